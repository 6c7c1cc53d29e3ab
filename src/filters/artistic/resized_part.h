// Scaling of what a filter lays over the picture.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// `part` at `percent` of both sides, as Resize makes it. The settings of Resize that this takes stay in the context as
/// if the user had chosen them; "By dimensions" neither counts nor changes. New, owned by the caller; null on failure.
[[nodiscard]] DibHandle ResizePart(const ReadView &part, int32_t percent, FilterContext &context);

} // namespace lmf
