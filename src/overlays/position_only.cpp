// Position Only: marks a picture as a placeholder, with a large cross and a label in the paper colour.
// Text is the label, in which macros such as %D are expanded; it has a font, Bold and Italic. Key line draws cross and
// label on a wider stroke in Key color, Heavy key line thrice as wide. Auto-rotate turns the label on tall
// pictures. Opacity is that of the whole mark. The ends of the cross are round, unless the settings file says
// otherwise.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    TextField(671, "Text:", &P::FilterPosonlyString)
        .Help("The label of the placeholder; macros such as %D are filled in."),
    FontButton(670, "Font:", &P::FilterPosonlyFontname).Help("The typeface of the label."),
    CheckBox(672, "Bold", &P::FilterPosonlyBold).Help("Sets the label in bold letters."),
    CheckBox(673, "Italic", &P::FilterPosonlyItal).Help("Sets the label in slanted letters."),
    ColorButton(674, "Key color", &P::FilterPosonlyKeyColor)
        .Help("The color of the wider stroke behind cross and label."),
    CheckBox(675, "Key line", &P::FilterPosonlyKeyLine)
        .Help("Draws cross and label on a wider stroke in the key color."),
    CheckBox(676, "Heavy key line", &P::FilterPosonlyBigline).Help("Makes the wider stroke three times as wide."),
    CheckBox(678, "Auto-rotate", &P::FilterPosonlyAutorotate)
        .Help("Turns the label on pictures that are taller than wide."),
    Slider(677, "Opacity:", &P::FilterPosonlyOpacity, {32, 255})
        .In(Unit::Levels)
        .Help("How much the mark covers the picture; 255 hides what is below it."),
    HiddenBool(&P::FilterPosonlyRound).Help("Gives the cross round ends."),
};

} // namespace

extern constexpr Filter kPositionOnly = MakeFilter<kPage>(nullptr);

} // namespace lmf
