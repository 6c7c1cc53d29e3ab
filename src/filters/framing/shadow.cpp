#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(857, "Alpha", &FilterParameters::FilterShadowAlpha),
    ColorButton(854, "Color", &FilterParameters::FilterShadowColor),
    Slider(853, "Direction:", &FilterParameters::FilterShadowDirection, {0, 3}),
    ColorButton(856, "Frame", &FilterParameters::FilterShadowFrameColor),
    CheckBox(855, "Frame", &FilterParameters::FilterShadowFrameEnable),
    Slider(850, "Opacity:", &FilterParameters::FilterShadowOpacity, {1, 255}),
    Slider(851, "Size:", &FilterParameters::FilterShadowSize, {1, 128}),
    Slider(852, "Softness:", &FilterParameters::FilterShadowSoft, {0, 40}),
};
extern constexpr FilterSlots kShadow = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
