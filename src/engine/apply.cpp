#include "engine/apply.h"

#include "engine/catalogue.h"

namespace lmf {

static uint32_t Fail(FilterContext *context, ErrorCode code) {
    context->errorCode = code;
    return 0;
}

/// Runs the kernel on a private clone of `picture`.
static DibHandle RunOnClone(const FilterEntry &entry, DibHandle picture, FilterContext *context) {
    DibOwner working(DibClone(picture));
    return working ? entry.slots->FilterKernel(working.handle, context) : nullptr;
}

/// Moves the second picture with the first. A failure is silent: the second result then stays as it was.
static void RunSecond(const FilterEntry &entry, FilterContext *context) {
    const int32_t mode = context->mode;
    context->mode = kModeGrey;
    if (DibHandle moved = RunOnClone(entry, context->second, context)) {
        BlockFree(context->secondResult);
        context->secondResult = moved;
    }
    context->mode = mode;
}

uint32_t ApplyFilterDirect(FilterContext *context) {
    BlockFree(context->auxImage);
    context->auxImage = nullptr;
    if (context->filterIndex < 0 || context->filterIndex >= kFilterCount) return Fail(context, kErrorUnsupported);
    const FilterEntry &entry = FilterCatalogue[context->filterIndex];
    if (!FilterAccepts(entry, context->mode)) return Fail(context, kErrorUnsupported);

    DibHandle result = RunOnClone(entry, context->source, context);
    if (result == nullptr) return Fail(context, kErrorMemory);
    BlockFree(context->result);
    context->result = result;

    const bool runsSecond =
        (entry.flags & (FilterAcceptsGrey | FilterRunsSecond)) && !(entry.flags & FilterKeepsSecond);
    if (context->second != nullptr && runsSecond) RunSecond(entry, context);
    if (entry.flags & FilterDropsSecond) {
        BlockFree(context->secondResult);
        context->secondResult = nullptr;
    }

    if (!DibInfo(result, &context->resultWidth, &context->resultHeight, nullptr, nullptr))
        return Fail(context, kErrorMemory);
    context->errorCode = kErrorOk;
    return 1;
}

} // namespace lmf
