// Hue Saturation Brightness: turns the hue by degrees and scales saturation and brightness. Hues that a turn pushes
// past the ends of the circle are not wrapped: all of them get the colours between magenta and red.
#include "engine/slots.h"
#include "image/hsv.h"
#include "image/pixel_map.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(520, "Hue:", &FilterParameters::FilterHSBHue, {0, 360}, 180).Track(7),
    OffsetSlider(521, "Saturation:", &FilterParameters::FilterHSBSaturation, {0, 200}, 100),
    OffsetSlider(522, "Brightness:", &FilterParameters::FilterHSBBrightness, {0, 200}, 100),
};

static DibHandle HueSaturationBrightnessKernel(DibHandle source, FilterContext *context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const HsvChange change = {static_cast<float>(context->FilterHSBHue) - 180.0f,
                              2.0f * (static_cast<float>(context->FilterHSBSaturation) / 200.0f),
                              2.0f * (static_cast<float>(context->FilterHSBBrightness) / 200.0f)};
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { AdjustHsvRow(to, from, width, change); });
    return pass.Finish();
}

extern constexpr FilterSlots kHueSaturationBrightness = MakeSlots<kPage>(HueSaturationBrightnessKernel);

} // namespace lmf
