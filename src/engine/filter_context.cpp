#include "engine/filter_context.h"

namespace lmf {

void ReplaceSecond(FilterContext &context, DibHandle made) {
    BlockFree(context.secondResult);
    context.secondResult = made;
    context.secondIsReplaced = true;
}

void FreePictures(FilterContext &context) {
    for (DibHandle *owned : {&context.result, &context.secondResult, &context.auxImage}) {
        BlockFree(*owned);
        *owned = nullptr;
    }
}

} // namespace lmf
