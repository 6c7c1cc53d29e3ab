// The road of one filter run without a window.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// Runs the filter of `context->filterIndex` on a clone of `source` and, where its flags ask for it, of `second`.
/// Needs filterIndex, source, second, mode and the filter's parameters; writes result, secondResult, resultWidth,
/// resultHeight, auxImage and errorCode.
/// @return 1, or 0 with errorCode 5 (no such filter, or it does not take such pictures) or 6 (it failed).
uint32_t ApplyFilterDirect(FilterContext *context);

} // namespace lmf
