#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1191, "Radius:", &FilterParameters::FilterImpactBlur, {0, 65}),
    Slider(1193, "Brightness:", &FilterParameters::FilterImpactBrightness, {0, 255}),
    Slider(1194, "Contrast:", &FilterParameters::FilterImpactContrast, {0, 255}),
    ColorButton(1195, "Outline", &FilterParameters::FilterImpactOutlineColor),
    CheckBox(1192, "Outline", &FilterParameters::FilterImpactOutlineEnable),
    Slider(1190, "Mode:", &FilterParameters::FilterImpactMode, {0, 22}),
};
extern constexpr FilterSlots kImpact = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
