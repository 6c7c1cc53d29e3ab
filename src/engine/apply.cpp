#include "engine/apply.h"

namespace lmf {

DibHandle RunFilter(int32_t row, const ReadView &source, int32_t mode, FilterContext &context) {
    const FilterKernelFunction kernel = FilterCatalogue[row].filter->FilterKernel;
    if (kernel == nullptr) return nullptr;
    LimitAllSettings(context);
    const int32_t modeOfRun = context.mode;
    context.mode = mode;
    DibHandle result = kernel(source, context);
    context.mode = modeOfRun;
    return result;
}

namespace {

/// Is the second picture to move as the picture did?
bool MovesSecond(uint32_t flags) {
    return (flags & (FilterAcceptsGrey | FilterRunsSecond)) && !(flags & FilterKeepsSecond);
}

/// What becomes of the second picture, once the kernel has had its say.
void FinishSecond(uint32_t flags, FilterContext &context) {
    const DibReadLock second(context.second);
    if (MovesSecond(flags) && second) {
        context.runsOnSecond = true;
        if (DibHandle moved = RunFilter(context.filterIndex, second.view, kModeGrey, context))
            ReplaceSecond(context, moved);
        context.runsOnSecond = false;
    }
    if (flags & FilterDropsSecond) ReplaceSecond(context, nullptr);
    if (!context.secondIsReplaced) ReplaceSecond(context, DibClone(context.second));
}

int32_t RunOnce(FilterContext &context) {
    BlockFree(context.auxImage);
    context.auxImage = nullptr;
    const DibReadLock source(context.source);
    if (!source) return LMF_ERROR_MEMORY;
    context.secondIsReplaced = false;
    LockedDib result(RunFilter(context.filterIndex, source.view, context.mode, context));
    if (!result) return LMF_ERROR_MEMORY;
    context.resultWidth = result.View().width;
    context.resultHeight = result.View().height;
    BlockFree(context.result);
    context.result = result.Release();
    FinishSecond(FilterCatalogue[context.filterIndex].flags, context);
    return LMF_ERROR_OK;
}

} // namespace

int32_t ApplyFilter(FilterContext &context) {
    context.errorCode = RunOnce(context);
    return context.errorCode;
}

namespace {

/// Is there a row that takes such pictures?
bool CanApply(const FilterContext &context) {
    const bool isRow = context.filterIndex >= 0 && context.filterIndex < kFilterCount;
    return isRow && FilterAccepts(FilterCatalogue[context.filterIndex], context.mode);
}

} // namespace

uint32_t ApplyFilterDirect(FilterContext *context) {
    if (!CanApply(*context)) {
        BlockFree(context->auxImage);
        context->auxImage = nullptr;
        context->errorCode = LMF_ERROR_UNSUPPORTED;
        return 0;
    }
    return ApplyFilter(*context) == LMF_ERROR_OK;
}

uint32_t ApplyFilterPrepared(FilterContext *context) {
    const auto prepare =
        CanApply(*context) ? FilterCatalogue[context->filterIndex].filter->hooks.FilterPrepare : nullptr;
    if (prepare != nullptr) prepare(*context, kPrepareSelected);
    const uint32_t done = ApplyFilterDirect(context);
    if (prepare != nullptr) prepare(*context, kPrepareEnd);
    return done;
}

} // namespace lmf
