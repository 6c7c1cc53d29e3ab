// The kernel of White Balance, which Photo Fine-tune calls whole.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// New picture lifted so that its reference colour becomes white; null on failure. Reads FilterWhiteBalancePaper and
/// the context's paper colour.
[[nodiscard]] DibHandle WhiteBalanceKernel(DibHandle source, FilterContext *context);

} // namespace lmf
