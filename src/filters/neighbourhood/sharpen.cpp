// Sharpen: each pixel minus a bell-shaped average of its neighbours. The size and the width of the bell are the
// settings of Emboss; the page's own two sliders are kept but do not reach the picture.
#include <cmath>

#include "engine/slots.h"
#include "filters/neighbourhood/convolve_square.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(870, "Radius:", &FilterParameters::FilterSharpenWidth, {3, 15}),
    Slider(871, "Depth:", &FilterParameters::FilterSharpenSigma, {15, 50}),
};

static DibHandle SharpenKernel(DibHandle source, FilterContext *context) {
    const int32_t order = context->FilterEmbossWidth | 1, half = order / 2;
    const double sigma = context->FilterEmbossSigma / 10.0;
    if (order < 1 || order > INT16_MAX) return nullptr;
    BlockArray<double> kernel(static_cast<uint64_t>(order) * static_cast<uint64_t>(order));
    if (!kernel) return nullptr;
    double total = 0.0, *weight = kernel.data;
    for (int32_t v = -half; v <= half; v++)
        for (int32_t u = -half; u <= half; u++) total += *weight++ = std::exp(-(u * u + v * v) / (sigma * sigma));
    // The sum becomes negative, and dividing by it turns the centre positive and the ring negative.
    kernel[order * order / 2] = -2.0 * total;
    return ConvolveSquare(source, order, kernel.data, context);
}

extern constexpr FilterSlots kSharpen = MakeSlots<kPage>(SharpenKernel);

} // namespace lmf
