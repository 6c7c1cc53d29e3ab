// Average: every pixel becomes the plain mean of the 3 by 3 pixels around it, or of 5 by 5 with "Wide aperture".
#include "engine/slots.h"
#include "filters/neighbourhood/convolve5x5.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(230, "Wide aperture", &FilterParameters::FilterAverageWide),
};

static constexpr Window5x5 kNarrow = {
    {0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0}, 9, 0};
static constexpr Window5x5 kWide = {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 25, 0};

static DibHandle AverageKernel(DibHandle source, FilterContext *context) {
    return Convolve5x5(source, context->FilterAverageWide ? kWide : kNarrow);
}

extern constexpr FilterSlots kAverage = MakeSlots<kPage>(AverageKernel);

} // namespace lmf
