// Gaussian Blur: every pixel becomes the mean of its surroundings, weighted by a bell curve that falls off with the
// distance. "Radius" is how far the mean reaches and "Depth" the width of the curve (its sigma); both are tenths of a
// pixel, although the page shows them as hundredths.
#include "engine/slots.h"
#include "filters/neighbourhood/gaussian.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(490, "Depth:", &FilterParameters::FilterGaussianSigma, {10, 100}),
    HundredthsSlider(491, "Radius:", &FilterParameters::FilterGaussianRadius, {10, 990}),
};

static DibHandle GaussianBlurKernel(DibHandle source, FilterContext *context) {
    return GaussianBlurKernelRun(source, context);
}

extern constexpr FilterSlots kGaussianBlur = MakeSlots<kPage>(GaussianBlurKernel);

} // namespace lmf
