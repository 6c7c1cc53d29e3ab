// Alpha shadow: throws a shadow whose outline is the second picture's.
// Size is the distance of the shadow in pixels, Softness the width of its edge, Opacity its strength and Direction the
// side to which it falls.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(220, "Opacity:", &P::FilterAlphaShadowOpacity, {1, 255}),
    Slider(221, "Size:", &P::FilterAlphaShadowSize, {1, 128}),
    Slider(222, "Softness:", &P::FilterAlphaShadowSoft, {0, 40}),
    Combo(223, "Direction:", &P::FilterAlphaShadowDirection, "Upper left;Upper right;Lower left;Lower right"),
    ColorButton(224, "Color", &P::FilterAlphaShadowColor),
};
extern constexpr Filter kAlphaShadow = MakeFilter<kPage>(nullptr);

} // namespace lmf
