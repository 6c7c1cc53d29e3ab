// Position Only: marks a picture as a placeholder, with a large cross and a label in the paper colour.
// Text is the label, in which macros such as %D are expanded; it has a font, Bold and Italic. Key line draws cross and
// label on a wider stroke in Key color, Heavy key line thrice as wide. Auto-rotate turns the label on tall
// pictures. Opacity is that of the whole mark. The ends of the cross are round, unless the settings file says
// otherwise.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    TextField(671, "Text:", &FilterParameters::FilterPosonlyString),
    FontButton(670, "Font:", &FilterParameters::FilterPosonlyFontname),
    CheckBox(672, "Bold", &FilterParameters::FilterPosonlyBold),
    CheckBox(673, "Italic", &FilterParameters::FilterPosonlyItal),
    ColorButton(674, "Key color", &FilterParameters::FilterPosonlyKeyColor),
    CheckBox(675, "Key line", &FilterParameters::FilterPosonlyKeyLine),
    CheckBox(676, "Heavy key line", &FilterParameters::FilterPosonlyBigline),
    CheckBox(678, "Auto-rotate", &FilterParameters::FilterPosonlyAutorotate),
    Slider(677, "Opacity:", &FilterParameters::FilterPosonlyOpacity, {32, 255}),
    HiddenBool(&FilterParameters::FilterPosonlyRound),
};
extern constexpr FilterSlots kPositionOnly = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
