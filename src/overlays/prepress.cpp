// Prepress: puts the picture on a larger sheet of the paper colour with the marks that a printer looks for: crop marks,
// alignment marks, ramps of the four inks, colour swatches, a line of information and the date. Each can be left out.
// The information is a text with macros such as %D, in a font of its own, Bold or not. The marks' lines grow with the
// picture, unless the settings file asks for lines of one pixel.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(692, "Crop marks", &FilterParameters::FilterPrepressCropmarks),
    CheckBox(693, "Alignment marks", &FilterParameters::FilterPrepressAlignmentmarks),
    CheckBox(694, "CMYK swatches", &FilterParameters::FilterPrepressCmykSwatches),
    CheckBox(695, "Color swatches", &FilterParameters::FilterPrepressColorswatches),
    CheckBox(696, "Information", &FilterParameters::FilterPrepressDetails),
    CheckBox(697, "Date and time", &FilterParameters::FilterPrepressDate),
    CheckBox(691, "Bold", &FilterParameters::FilterPrepressDetailbold),
    FontButton(690, "Font:", &FilterParameters::FilterPrepressFontname),
    TextField(698, "Text:", &FilterParameters::FilterPrepressDetailText),
    HiddenBool(&FilterParameters::FilterPrepressOnePixelLines),
};
extern constexpr FilterSlots kPrepress = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
