// Lists of faces and eyes as a face finder gives them.
#pragma once

#include <vector>

#include "lmf16finder.h"
#include "platform/memory.h"

namespace lmf::testing {

struct FaceBox {
    int32_t left, top, right, bottom;
};

/// A list, owned by the caller, whose unread bytes are not 0. With `missing` it lacks its last bytes.
BlockHandle MakeFaceList(const std::vector<FaceBox> &faces, const std::vector<FaceBox> &eyes, uint64_t missing = 0);

} // namespace lmf::testing
