// Remove Alpha: lays the picture over the paper colour by its second picture, 255 for opaque, and drops that. Where
// the second picture is smaller, the picture counts as opaque. There are no settings.
#include "engine/slots.h"
#include "image/dib.h"

namespace lmf {

static uint32_t OverPaper(uint32_t channel, uint32_t paper, uint32_t alpha) {
    return (alpha * channel / 255 + paper * (255 - alpha) / 255) & 255;
}

static DibHandle RemoveAlphaKernel(DibHandle source, FilterContext *context) {
    DibLock from(source), alpha(context->second);
    if (!from || !alpha) return nullptr;
    DibOwner result(DibCreate(from.view.width, from.view.height, nullptr, 24));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const Color paper = context->paperColor;
    for (int32_t y = 0; y < from.view.height; y++) {
        for (int32_t x = 0; x < from.view.width; x++) {
            const Color pixel = DibGetPixel(from.image, x, y);
            const uint32_t m = DibGetPixel(alpha.image, x, y) & 255;
            DibSetPixel(to.image, x, y,
                        PackColor(OverPaper(RedOf(pixel), RedOf(paper), m),
                                  OverPaper(GreenOf(pixel), GreenOf(paper), m),
                                  OverPaper(BlueOf(pixel), BlueOf(paper), m)));
        }
    }
    BlockFree(context->secondResult);
    context->secondResult = nullptr;
    to.Unlock();
    return result.Release();
}

extern constexpr FilterSlots kRemoveAlpha = MakeSlots(RemoveAlphaKernel);

} // namespace lmf
