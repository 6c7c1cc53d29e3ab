// Impact: blends a blurred copy of the picture with its grey copy, for strong poster-like contrast.
// Mode is the way of blending, Radius that of the blur; Contrast and Brightness work on the blurred copy.
// Outline draws the contours of the picture on top, in a colour of their own.
#include "engine/filter.h"

namespace lmf {

static constexpr const char *kModes =
    "Normal;Lighten;Darken;Multiply;Average;Add;Subtract;Difference;Negate;Screen;Exclude;Overlay;Soft light;"
    "Hard light;Liquid light;Vivid light;Point light;Extreme mix;Reflect;Dodge;Burn;Extreme dodge;Extreme burn";

static constexpr PageControl kPage[] = {
    Combo(1190, "Mode:", &P::FilterImpactMode, kModes),
    Slider(1191, "Radius:", &P::FilterImpactBlur, {0, 65}),
    Slider(1194, "Contrast:", &P::FilterImpactContrast, {0, 255}),
    Slider(1193, "Brightness:", &P::FilterImpactBrightness, {0, 255}),
    CheckBox(1192, "Outline", &P::FilterImpactOutlineEnable),
    ColorButton(1195, "Outline", &P::FilterImpactOutlineColor),
};
extern constexpr Filter kImpact = MakeFilter<kPage>(nullptr);

} // namespace lmf
