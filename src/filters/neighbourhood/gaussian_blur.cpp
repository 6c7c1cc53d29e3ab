// Gaussian Blur: every pixel becomes the mean of its surroundings, weighted by a bell curve that falls off with the
// distance. "Radius" is how far the mean reaches and "Depth" the width of the curve (its sigma); both are tenths of a
// pixel, although the page shows them as hundredths.
#include "engine/filter.h"
#include "image/blur/gaussian.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    HundredthsSlider(490, "Depth:", &P::FilterGaussianSigma, {10, 100})
        .In(Unit::Pixels, 10)
        .Help("How evenly the pixels within the radius count; low values favour the nearest ones."),
    HundredthsSlider(491, "Radius:", &P::FilterGaussianRadius, {10, 990})
        .In(Unit::Pixels, 10)
        .Help("How far around each pixel the blur reaches, rounded up to whole pixels."),
};

DibHandle GaussianBlurKernel(const ReadView &source, FilterContext &context) {
    return GaussianBlurKernelRun(source, context.mode, context.FilterGaussianRadius, context.FilterGaussianSigma);
}

} // namespace

extern constexpr Filter kGaussianBlur = MakeFilter<kPage>(GaussianBlurKernel);

} // namespace lmf
