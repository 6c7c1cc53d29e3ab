// Paper Curl: rolls one corner of the picture up like a page.
// Size is how much of the picture is rolled up, in percent, and Direction which corner. Curl color is the back of the
// page. Include clipboard shows the clipboard's picture where the page is lifted, instead of the paper colour.
// Antialias smooths the edges.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(650, "Size:", &FilterParameters::FilterCurlSize, {5, 95}),
    CheckBox(651, "Include clipboard", &FilterParameters::FilterCurlClipboard),
    CheckBox(652, "Antialias", &FilterParameters::FilterCurlAntialias).Restores(1),
    Combo(653, "Direction:", &FilterParameters::FilterCurlDirection, "Upper left;Upper right;Lower left;Lower right"),
    ColorButton(654, "Curl color", &FilterParameters::FilterCurlColor),
};
extern constexpr FilterSlots kPaperCurl = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
