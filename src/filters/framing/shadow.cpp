// Shadow: puts the picture on a larger sheet of the paper colour and throws its shadow there.
// Size is the distance of the shadow in pixels, Softness the width of its edge, Opacity its strength and Direction the
// side to which it falls. Frame draws a line around the picture in a colour of its own. With Alpha on, the shadow also
// goes into the second picture as transparency.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(850, "Opacity:", &P::FilterShadowOpacity, {1, 255}),
    Slider(851, "Size:", &P::FilterShadowSize, {1, 128}),
    Slider(852, "Softness:", &P::FilterShadowSoft, {0, 40}),
    Combo(853, "Direction:", &P::FilterShadowDirection, "Upper left;Upper right;Lower left;Lower right"),
    ColorButton(854, "Color", &P::FilterShadowColor),
    CheckBox(855, "Frame", &P::FilterShadowFrameEnable),
    ColorButton(856, "Frame", &P::FilterShadowFrameColor),
    CheckBox(857, "Alpha", &P::FilterShadowAlpha),
};
extern constexpr Filter kShadow = MakeFilter<kPage>(nullptr);

} // namespace lmf
