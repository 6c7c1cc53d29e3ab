// Remove Alpha: lays the picture over the paper colour by its second picture, 255 for opaque, and drops that. Where
// the second picture is smaller, the picture counts as opaque. There are no settings.
#include "engine/slots.h"
#include "image/div255.h"
#include "image/multiversion.h"
#include "image/pixel_pass.h"

namespace lmf {

[[gnu::always_inline]] static inline uint8_t OverPaper(uint8_t channel, uint8_t paper, uint8_t alpha) {
    return MixBytes(channel, paper, static_cast<uint8_t>(255 - alpha));
}

LMF_MULTIVERSION
static void LayRowOverPaper(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict alpha,
                            int32_t width, Color paper) {
    const uint8_t red = RedOf(paper), green = GreenOf(paper), blue = BlueOf(paper);
    for (ptrdiff_t x = 0; x < width; x++) {
        to[x * 3] = OverPaper(from[x * 3], blue, alpha[x]);
        to[x * 3 + 1] = OverPaper(from[x * 3 + 1], green, alpha[x]);
        to[x * 3 + 2] = OverPaper(from[x * 3 + 2], red, alpha[x]);
    }
}

static void LayPixelsOverPaper(const DibLock &to, const DibLock &from, const DibLock &alpha, int32_t y, Color paper) {
    for (int32_t x = 0; x < from.view.width; x++) {
        const Color pixel = DibGetPixel(from.image, x, y);
        const auto m = static_cast<uint8_t>(DibGetPixel(alpha.image, x, y));
        DibSetPixel(to.image, x, y,
                    PackColor(OverPaper(RedOf(pixel), RedOf(paper), m), OverPaper(GreenOf(pixel), GreenOf(paper), m),
                              OverPaper(BlueOf(pixel), BlueOf(paper), m)));
    }
}

static DibHandle RemoveAlphaKernel(DibHandle source, FilterContext *context) {
    PixelPass pass(source, 24, nullptr);
    DibLock alpha(context->second);
    if (!pass || !alpha) return nullptr;
    const DibLock &from = pass.from, &to = pass.to;
    const bool plainBytes = from.view.bits == 24 && alpha.view.bits == 8 && alpha.view.width >= from.view.width &&
                            alpha.view.height >= from.view.height;
    for (int32_t y = 0; y < from.view.height; y++) {
        if (plainBytes)
            LayRowOverPaper(to.view.Row(y), from.view.Row(y), alpha.view.Row(y), from.view.width, context->paperColor);
        else
            LayPixelsOverPaper(to, from, alpha, y, context->paperColor);
    }
    BlockFree(context->secondResult);
    context->secondResult = nullptr;
    return pass.Finish();
}

extern constexpr FilterSlots kRemoveAlpha = MakeSlots(RemoveAlphaKernel);

} // namespace lmf
