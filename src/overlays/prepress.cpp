// Prepress: puts the picture on a larger sheet of the paper colour with the marks that a printer looks for: crop marks,
// alignment marks, ramps of the four inks, colour swatches, a line of information and the date. Each can be left out.
// The information is a text with macros such as %D, in a font of its own, Bold or not. The marks' lines grow with the
// picture, unless the settings file asks for lines of one pixel.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(692, "Crop marks", &P::FilterPrepressCropmarks).Help("Draws the lines that show where to cut."),
    CheckBox(693, "Alignment marks", &P::FilterPrepressAlignmentmarks)
        .Help("Draws the crosses by which prints are laid over each other."),
    CheckBox(694, "CMYK swatches", &P::FilterPrepressCmykSwatches).Help("Draws ramps of the four inks."),
    CheckBox(695, "Color swatches", &P::FilterPrepressColorswatches).Help("Draws squares of pure colors."),
    CheckBox(696, "Information", &P::FilterPrepressDetails).Help("Prints the line of information."),
    CheckBox(697, "Date and time", &P::FilterPrepressDate).Help("Prints the date and the time."),
    CheckBox(691, "Bold", &P::FilterPrepressDetailbold).Help("Sets the information in bold letters."),
    FontButton(690, "Font:", &P::FilterPrepressFontname).Help("The typeface of the information."),
    TextField(698, "Text:", &P::FilterPrepressDetailText)
        .Help("The line of information; macros such as %D are filled in."),
    HiddenBool(&P::FilterPrepressOnePixelLines)
        .Help("Keeps the lines of the marks one pixel wide, however large the picture is."),
};

} // namespace

extern constexpr Filter kPrepress = MakeFilter<kPage>(nullptr);

} // namespace lmf
