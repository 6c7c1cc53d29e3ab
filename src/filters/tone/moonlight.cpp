// Moonlight: draws every channel half the way to the pixel's smallest channel and then half the way to its largest,
// both scaled by the factor first, which takes out colour and darkens.
#include <algorithm>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(590, "Factor:", &P::FilterMoonlightFactor, {1, 100})
        .In(Unit::Percent)
        .Help("Keeps the picture bright when high; low values make it darker."),
};

/// The result cannot pass 255, since the factor cannot pass 1.
uint8_t Moonlit(int32_t channel, float low, float high) {
    const float lowered = 0.5f * (static_cast<float>(channel) + low);
    return static_cast<uint8_t>(static_cast<int32_t>(0.5f * (lowered + high)));
}

LMF_MULTIVERSION
void MoonlightRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, float factor) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t blue = from[i], green = from[i + 1], red = from[i + 2];
        const float low = static_cast<float>(std::min({red, green, blue})) * factor;
        const float high = static_cast<float>(std::max({red, green, blue})) * factor;
        to[i] = Moonlit(blue, low, high);
        to[i + 1] = Moonlit(green, low, high);
        to[i + 2] = Moonlit(red, low, high);
    }
}

DibHandle MoonlightKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source, ResultPalette::Black);
    if (!pass) return nullptr;
    const float factor = static_cast<float>(context.FilterMoonlightFactor) / 100.0f;
    MapColors(pass,
              [factor](uint8_t *to, const uint8_t *from, size_t width) { MoonlightRow(to, from, width, factor); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kMoonlight = MakeFilter<kPage>(MoonlightKernel);

} // namespace lmf
