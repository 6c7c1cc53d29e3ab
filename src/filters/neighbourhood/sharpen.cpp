// Sharpen: each pixel minus a bell-shaped average of its neighbours. The size and the width of the bell are the
// settings of Emboss; the page's own two sliders are kept but do not reach the picture.
#include <numeric>

#include "engine/filter.h"
#include "image/blur/convolve_square.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(870, "Radius:", &P::FilterSharpenWidth, {3, 15}),
    Slider(871, "Depth:", &P::FilterSharpenSigma, {15, 50}),
};

static DibHandle SharpenKernel(const ReadView &source, FilterContext &context) {
    const int32_t order = context.FilterEmbossWidth | 1, count = order * order;
    SquareKernel kernel;
    if (!BuildBell(order, context.FilterEmbossSigma / 10.0, &kernel)) return nullptr;
    // The sum becomes negative, and dividing by it turns the centre positive and the ring negative.
    double *weights = kernel->data;
    weights[count / 2] = -2.0 * std::accumulate(weights, weights + count, 0.0);
    return ConvolveSquare(source, order, weights, context.mode);
}

extern constexpr Filter kSharpen = MakeFilter<kPage>(SharpenKernel);

} // namespace lmf
