// The arithmetic of White Balance, which Photo Fine-tune calls whole.
#pragma once

#include <optional>

#include "image/core/dib.h"

namespace lmf {

/// New picture lifted so that its reference colour becomes white, or its brightest pixel where none is given; null on
/// failure.
[[nodiscard]] DibHandle WhiteBalance(const ReadView &source, std::optional<Color> white);

} // namespace lmf
