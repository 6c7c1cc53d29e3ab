// The kernel of Normalize, which other filters and the adjustment chain call whole.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// New picture whose tones between the darkest and the brightest percent are stretched to the whole scale; null on
/// failure. The context is not read.
[[nodiscard]] DibHandle NormalizeKernel(DibHandle source, FilterContext *context);

} // namespace lmf
