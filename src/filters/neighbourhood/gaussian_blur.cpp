// Gaussian Blur: every pixel becomes the mean of its surroundings, weighted by a bell curve that falls off with the
// distance. "Radius" is how far the mean reaches and "Depth" the width of the curve (its sigma); both are tenths of a
// pixel, although the page shows them as hundredths.
#include "engine/filter.h"
#include "image/blur/gaussian.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(490, "Depth:", &P::FilterGaussianSigma, {10, 100}),
    HundredthsSlider(491, "Radius:", &P::FilterGaussianRadius, {10, 990}),
};

static DibHandle GaussianBlurKernel(const ReadView &source, FilterContext &context) {
    return GaussianBlurKernelRun(source, context.mode, context.FilterGaussianRadius, context.FilterGaussianSigma);
}

extern constexpr Filter kGaussianBlur = MakeFilter<kPage>(GaussianBlurKernel);

} // namespace lmf
