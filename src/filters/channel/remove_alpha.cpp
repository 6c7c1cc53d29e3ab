// Remove Alpha: lays the picture over the paper colour by its second picture, 255 for opaque, and drops that. Where
// the second picture is smaller, the picture counts as opaque. There are no settings.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/div255.h"
#include "image/core/pixel_pass.h"

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

static void LayPixelsOverPaper(const WriteView &to, const ReadView &from, const ReadView &alpha, int32_t y,
                               Color paper) {
    for (int32_t x = 0; x < from.width; x++) {
        const Color pixel = DibGetPixel(from, x, y);
        const auto m = static_cast<uint8_t>(DibGetPixel(alpha, x, y));
        DibSetPixel(to, x, y,
                    PackColor(OverPaper(RedOf(pixel), RedOf(paper), m), OverPaper(GreenOf(pixel), GreenOf(paper), m),
                              OverPaper(BlueOf(pixel), BlueOf(paper), m)));
    }
}

static DibHandle RemoveAlphaKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source, 24, nullptr);
    const DibReadLock second(context.second);
    if (!pass || !second) return nullptr;
    const ReadView &alpha = second.view;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const bool plainBytes =
        from.bits == 24 && alpha.bits == 8 && alpha.width >= from.width && alpha.height >= from.height;
    for (int32_t y = 0; y < from.height; y++) {
        if (plainBytes)
            LayRowOverPaper(to.Row(y), from.Row(y), alpha.Row(y), from.width, context.paperColor);
        else
            LayPixelsOverPaper(to, from, alpha, y, context.paperColor);
    }
    ReplaceSecond(context, nullptr);
    return pass.Finish();
}

extern constexpr Filter kRemoveAlpha = MakeFilter(RemoveAlphaKernel);

} // namespace lmf
