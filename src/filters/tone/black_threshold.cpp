// Black Threshold: pixels darker than the level become black; a pixel at exactly the level stays. With "Antialias" the
// work is done at four times the size.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/scale/supersample.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(260, "Threshold:", &P::FilterBlackThresholdLevel, {24, 160})
        .In(Unit::Levels)
        .Help("Makes every pixel darker than this level black."),
    CheckBox(261, "Antialias", &P::FilterBlackAntialias).Help("Makes the edges of the black areas smooth."),
};

LMF_MULTIVERSION
void BlackenRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, int32_t level) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t kept = WeightedGrey(from[i + 2], from[i + 1], from[i]) < level ? 0 : 0xFF;
        to[i] = static_cast<uint8_t>(from[i] & kept);
        to[i + 1] = static_cast<uint8_t>(from[i + 1] & kept);
        to[i + 2] = static_cast<uint8_t>(from[i + 2] & kept);
    }
}

/// Depths other than 24 are compared by their raw pixel value.
DibHandle Blacken(const ReadView &source, int32_t level) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapPixels(
        pass, [level](uint32_t value) { return value < static_cast<uint32_t>(level) ? 0 : value; },
        [level](uint8_t *to, const uint8_t *from, size_t width) { BlackenRow(to, from, width, level); });
    return pass.Finish();
}

DibHandle BlackThresholdKernel(const ReadView &source, FilterContext &context) {
    const auto blacken = [&](const ReadView &picture) { return Blacken(picture, context.FilterBlackThresholdLevel); };
    return context.FilterBlackAntialias != 0 ? Supersample(source, blacken) : blacken(source);
}

} // namespace

extern constexpr Filter kBlackThreshold = MakeFilter<kPage>(BlackThresholdKernel);

} // namespace lmf
