// Hue Saturation Brightness: turns the hue by degrees and scales saturation and brightness. Hues that a turn pushes
// past the ends of the circle are not wrapped: all of them get the colours between magenta and red.
#include "engine/filter.h"
#include "image/color/hsv.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    OffsetSlider(520, "Hue:", &P::FilterHSBHue, {0, 360}, 180)
        .Track(7)
        .In(Unit::Degrees)
        .Help("Turns the colors around the color circle."),
    OffsetSlider(521, "Saturation:", &P::FilterHSBSaturation, {0, 200}, 100)
        .In(Unit::Percent)
        .Help("Makes the colors stronger, or weaker as far as grey."),
    OffsetSlider(522, "Brightness:", &P::FilterHSBBrightness, {0, 200}, 100)
        .In(Unit::Percent)
        .Help("Makes the colors brighter, or darker as far as black."),
};

DibHandle HueSaturationBrightnessKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const HsvChange change = {static_cast<float>(context.FilterHSBHue) - 180.0f,
                              2.0f * (static_cast<float>(context.FilterHSBSaturation) / 200.0f),
                              2.0f * (static_cast<float>(context.FilterHSBBrightness) / 200.0f)};
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { AdjustHsvRow(to, from, width, change); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kHueSaturationBrightness = MakeFilter<kPage>(HueSaturationBrightnessKernel);

} // namespace lmf
