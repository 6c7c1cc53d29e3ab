#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(693, "Alignment marks", &FilterParameters::FilterPrepressAlignmentmarks),
    CheckBox(692, "Crop marks", &FilterParameters::FilterPrepressCropmarks),
    CheckBox(694, "CMYK swatches", &FilterParameters::FilterPrepressCmykSwatches),
    CheckBox(695, "Color swatches", &FilterParameters::FilterPrepressColorswatches),
    CheckBox(697, "Date and time", &FilterParameters::FilterPrepressDate),
    CheckBox(691, "Bold", &FilterParameters::FilterPrepressDetailbold),
    CheckBox(696, "Information", &FilterParameters::FilterPrepressDetails),
    TextField(698, "Text:", &FilterParameters::FilterPrepressDetailText),
    FontButton(690, "Font:", &FilterParameters::FilterPrepressFontname),
    HiddenBool(&FilterParameters::FilterPrepressOnePixelLines),
};
extern constexpr FilterSlots kPrepress = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
