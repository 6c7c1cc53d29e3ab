// The kernel of Neon, which Impact calls whole.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// New picture of the edges of `source`, found on a copy of at most 500 pixels across; null on failure.
[[nodiscard]] DibHandle NeonKernel(DibHandle source, FilterContext *context);

} // namespace lmf
