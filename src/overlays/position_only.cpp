// Position Only: marks a picture as a placeholder, with a large cross and a label in the paper colour.
// Text is the label, in which macros such as %D are expanded; it has a font, Bold and Italic. Key line draws cross and
// label on a wider stroke in Key color, Heavy key line thrice as wide. Auto-rotate turns the label on tall
// pictures. Opacity is that of the whole mark. The ends of the cross are round, unless the settings file says
// otherwise.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    TextField(671, "Text:", &P::FilterPosonlyString),
    FontButton(670, "Font:", &P::FilterPosonlyFontname),
    CheckBox(672, "Bold", &P::FilterPosonlyBold),
    CheckBox(673, "Italic", &P::FilterPosonlyItal),
    ColorButton(674, "Key color", &P::FilterPosonlyKeyColor),
    CheckBox(675, "Key line", &P::FilterPosonlyKeyLine),
    CheckBox(676, "Heavy key line", &P::FilterPosonlyBigline),
    CheckBox(678, "Auto-rotate", &P::FilterPosonlyAutorotate),
    Slider(677, "Opacity:", &P::FilterPosonlyOpacity, {32, 255}),
    HiddenBool(&P::FilterPosonlyRound),
};
extern constexpr Filter kPositionOnly = MakeFilter<kPage>(nullptr);

} // namespace lmf
