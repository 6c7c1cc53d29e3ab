// Paper Curl: rolls one corner of the picture up like a page.
// Size is how much of the picture is rolled up, in percent, and Direction which corner. Curl color is the back of the
// page. Include clipboard shows the clipboard's picture where the page is lifted, instead of the paper colour.
// Antialias smooths the edges.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(650, "Size:", &P::FilterCurlSize, {5, 95}),
    CheckBox(651, "Include clipboard", &P::FilterCurlClipboard),
    CheckBox(652, "Antialias", &P::FilterCurlAntialias).Restores(1),
    Combo(653, "Direction:", &P::FilterCurlDirection, "Upper left;Upper right;Lower left;Lower right"),
    ColorButton(654, "Curl color", &P::FilterCurlColor),
};
extern constexpr Filter kPaperCurl = MakeFilter<kPage>(nullptr);

} // namespace lmf
