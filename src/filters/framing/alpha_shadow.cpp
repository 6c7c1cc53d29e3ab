// Alpha shadow: throws a shadow whose outline is the second picture's.
// Size is the distance of the shadow in pixels, Softness the width of its edge, Opacity its strength and Direction the
// side to which it falls.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(220, "Opacity:", &FilterParameters::FilterAlphaShadowOpacity, {1, 255}),
    Slider(221, "Size:", &FilterParameters::FilterAlphaShadowSize, {1, 128}),
    Slider(222, "Softness:", &FilterParameters::FilterAlphaShadowSoft, {0, 40}),
    Combo(223, "Direction:", &FilterParameters::FilterAlphaShadowDirection,
          "Upper left;Upper right;Lower left;Lower right"),
    ColorButton(224, "Color", &FilterParameters::FilterAlphaShadowColor),
};
extern constexpr FilterSlots kAlphaShadow = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
