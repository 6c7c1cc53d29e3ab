// Average: every pixel becomes the plain mean of the 3 by 3 pixels around it, or of 5 by 5 with "Wide aperture".
#include "engine/filter.h"
#include "image/blur/convolve5x5.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(230, "Wide aperture", &P::FilterAverageWide).Help("Averages 5 by 5 pixels instead of 3 by 3."),
};

constexpr Window5x5 kNarrow = {{0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0}, 9, 0};
constexpr Window5x5 kWide = {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 25, 0};

DibHandle AverageKernel(const ReadView &source, FilterContext &context) {
    return Convolve5x5(source, context.FilterAverageWide ? kWide : kNarrow, context.byteOffsets);
}

} // namespace

extern constexpr Filter kAverage = MakeFilter<kPage>(AverageKernel);

} // namespace lmf
