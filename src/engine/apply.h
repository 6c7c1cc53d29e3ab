// How a filter runs: the one road of the direct path, of previews and of everything that chains filters.
#pragma once

#include "engine/catalogue.h"

namespace lmf {

/// Runs the row's kernel on a picture as one of this mode. The gate of all limits: every number of the context is
/// brought within its page first, so that kernels may trust what they read.
/// @return a new picture that the caller owns; null on failure or where this version cannot run the filter
[[nodiscard]] DibHandle RunFilter(int32_t row, const ReadView &source, int32_t mode, FilterContext &context);

/// Runs the filter of `filterIndex` on `source` and, where its flags ask for it, on `second`. Needs those, mode and the
/// parameters; writes result, secondResult, resultWidth, resultHeight, auxImage and errorCode. A failure to move the
/// second picture is silent: it then comes back as it was.
/// @return an LMF_ERROR_: OK, or MEMORY with the old result still there
int32_t ApplyFilter(FilterContext &context);

/// ApplyFilter for a call without a window, which chooses its filter freely: a row that does not exist or does not take
/// such pictures gives errorCode LMF_ERROR_UNSUPPORTED.
/// @return 1, or 0 with the reason in errorCode
uint32_t ApplyFilterDirect(FilterContext *context);

/// ApplyFilterDirect for a filter that may have to look at the source first: its FilterPrepare is called before and
/// after the run, as if it had been chosen in a window that is now closed.
uint32_t ApplyFilterPrepared(FilterContext *context);

} // namespace lmf
