// Prepress: puts the picture on a larger sheet of the paper colour with the marks that a printer looks for: crop marks,
// alignment marks, ramps of the four inks, colour swatches, a line of information and the date. Each can be left out.
// The information is a text with macros such as %D, in a font of its own, Bold or not. The marks' lines grow with the
// picture, unless the settings file asks for lines of one pixel.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(692, "Crop marks", &P::FilterPrepressCropmarks),
    CheckBox(693, "Alignment marks", &P::FilterPrepressAlignmentmarks),
    CheckBox(694, "CMYK swatches", &P::FilterPrepressCmykSwatches),
    CheckBox(695, "Color swatches", &P::FilterPrepressColorswatches),
    CheckBox(696, "Information", &P::FilterPrepressDetails),
    CheckBox(697, "Date and time", &P::FilterPrepressDate),
    CheckBox(691, "Bold", &P::FilterPrepressDetailbold),
    FontButton(690, "Font:", &P::FilterPrepressFontname),
    TextField(698, "Text:", &P::FilterPrepressDetailText),
    HiddenBool(&P::FilterPrepressOnePixelLines),
};
extern constexpr Filter kPrepress = MakeFilter<kPage>(nullptr);

} // namespace lmf
