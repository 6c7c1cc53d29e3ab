#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(652, "Antialias", &FilterParameters::FilterCurlAntialias).Restores(1),
    CheckBox(651, "Include clipboard", &FilterParameters::FilterCurlClipboard),
    ColorButton(654, "Curl color", &FilterParameters::FilterCurlColor),
    Slider(653, "Direction:", &FilterParameters::FilterCurlDirection, {0, 0}),
    Slider(650, "Size:", &FilterParameters::FilterCurlSize, {5, 95}),
};
extern constexpr FilterSlots kPaperCurl = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
