// Sharpen: each pixel minus a bell-shaped average of its neighbours. The size and the width of the bell are the
// settings of Emboss; the page's own two sliders are kept but do not reach the picture.
#include <numeric>

#include "engine/filter.h"
#include "image/blur/convolve_square.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(870, "Radius:", &P::FilterSharpenWidth, {3, 15})
        .In(Unit::Pixels)
        .Help("Is kept but changes nothing: Sharpen works with the radius of Emboss."),
    Slider(871, "Depth:", &P::FilterSharpenSigma, {15, 50})
        .In(Unit::Pixels, 10)
        .Help("Is kept but changes nothing: Sharpen works with the depth of Emboss."),
};

DibHandle SharpenKernel(const ReadView &source, FilterContext &context) {
    SquareKernel kernel = BellKernel(context.FilterEmbossWidth | 1, context.FilterEmbossSigma / 10.0);
    // The sum becomes negative, and dividing by it turns the centre positive and the ring negative.
    const int32_t count = kernel.order * kernel.order;
    kernel.weights[count / 2] = -2.0 * std::accumulate(kernel.weights, kernel.weights + count, 0.0);
    return ConvolveSquare(source, kernel, context.mode);
}

} // namespace

extern constexpr Filter kSharpen = MakeFilter<kPage>(SharpenKernel);

} // namespace lmf
