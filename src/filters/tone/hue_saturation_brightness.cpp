#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(522, "Brightness:", &FilterParameters::FilterHSBBrightness, {0, 200}, 100),
    OffsetSlider(520, "Hue:", &FilterParameters::FilterHSBHue, {0, 360}, 180),
    OffsetSlider(521, "Saturation:", &FilterParameters::FilterHSBSaturation, {0, 200}, 100),
};
extern constexpr FilterSlots kHueSaturationBrightness = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
