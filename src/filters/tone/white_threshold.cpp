// White Threshold: pixels brighter than the level become white; a pixel at exactly the level stays. With "Antialias"
// the work is done at four times the size.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/scale/supersample.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1070, "Threshold:", &P::FilterWhiteThresholdLevel, {64, 250})
        .In(Unit::Levels)
        .Help("Makes every pixel brighter than this level white."),
    CheckBox(1071, "Antialias", &P::FilterWhiteAntiAlias).Help("Makes the edges of the white areas smooth."),
};

LMF_MULTIVERSION
void WhitenRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, int32_t level) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t added = WeightedGrey(from[i + 2], from[i + 1], from[i]) <= level ? 0 : 0xFF;
        to[i] = static_cast<uint8_t>(from[i] | added);
        to[i + 1] = static_cast<uint8_t>(from[i + 1] | added);
        to[i + 2] = static_cast<uint8_t>(from[i + 2] | added);
    }
}

/// Depths other than 24 are compared by their raw pixel value, and their white is 255.
DibHandle Whiten(const ReadView &source, int32_t level) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapPixels(
        pass, [level](uint32_t value) { return value <= static_cast<uint32_t>(level) ? value : 255; },
        [level](uint8_t *to, const uint8_t *from, size_t width) { WhitenRow(to, from, width, level); });
    return pass.Finish();
}

DibHandle WhiteThresholdKernel(const ReadView &source, FilterContext &context) {
    const auto whiten = [&](const ReadView &picture) { return Whiten(picture, context.FilterWhiteThresholdLevel); };
    return context.FilterWhiteAntiAlias != 0 ? Supersample(source, whiten) : whiten(source);
}

} // namespace

extern constexpr Filter kWhiteThreshold = MakeFilter<kPage>(WhiteThresholdKernel);

} // namespace lmf
