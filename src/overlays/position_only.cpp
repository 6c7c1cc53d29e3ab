#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(678, "Auto-rotate", &FilterParameters::FilterPosonlyAutorotate),
    CheckBox(676, "Heavy key line", &FilterParameters::FilterPosonlyBigline),
    CheckBox(672, "Bold", &FilterParameters::FilterPosonlyBold),
    FontButton(670, "Font:", &FilterParameters::FilterPosonlyFontname),
    CheckBox(673, "Italic", &FilterParameters::FilterPosonlyItal),
    ColorButton(674, "Key color", &FilterParameters::FilterPosonlyKeyColor),
    CheckBox(675, "Key line", &FilterParameters::FilterPosonlyKeyLine),
    Slider(677, "Opacity:", &FilterParameters::FilterPosonlyOpacity, {32, 255}),
    HiddenBool(&FilterParameters::FilterPosonlyRound),
    TextField(671, "Text:", &FilterParameters::FilterPosonlyString),
};
extern constexpr FilterSlots kPositionOnly = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
