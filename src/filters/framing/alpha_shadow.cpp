#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    ColorButton(224, "Color", &FilterParameters::FilterAlphaShadowColor),
    Slider(223, "Direction:", &FilterParameters::FilterAlphaShadowDirection, {0, 3}),
    Slider(220, "Opacity:", &FilterParameters::FilterAlphaShadowOpacity, {1, 255}),
    Slider(221, "Size:", &FilterParameters::FilterAlphaShadowSize, {1, 128}),
    Slider(222, "Softness:", &FilterParameters::FilterAlphaShadowSoft, {0, 40}),
};
extern constexpr FilterSlots kAlphaShadow = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
