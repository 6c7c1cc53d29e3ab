// Emboss: relief lit from one corner. Each pixel becomes the sum of a square of neighbours, weighted by a bell curve
// that counts positive in one quadrant, negative in the others and not at all on one diagonal. "Radius:" is the side of
// the square, made odd; "Depth:" ten times the width of the bell, in pixels.
#include <cmath>

#include "engine/slots.h"
#include "filters/neighbourhood/convolve_square.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(400, "Radius:", &FilterParameters::FilterEmbossWidth, {4, 15}),
    Slider(401, "Depth:", &FilterParameters::FilterEmbossSigma, {15, 50}),
};

static DibHandle EmbossKernel(DibHandle source, FilterContext *context) {
    const int32_t order = context->FilterEmbossWidth | 1, half = order / 2;
    const double sigma = context->FilterEmbossSigma / 10.0;
    if (order < 1 || order > INT16_MAX) return nullptr;
    BlockArray<double> kernel(static_cast<uint64_t>(order) * static_cast<uint64_t>(order));
    if (!kernel) return nullptr;
    double *weight = kernel.data;
    for (int32_t v = -half; v <= half; v++) {
        for (int32_t u = -half; u <= half; u++) {
            const double sign = u >= 0 && v >= 0 ? 8.0 : -8.0;
            *weight++ = u == -v ? 0.0 : std::exp(-(u * u + v * v) / (sigma * sigma)) * sign;
        }
    }
    return ConvolveSquare(source, order, kernel.data, context);
}

extern constexpr FilterSlots kEmboss = MakeSlots<kPage>(EmbossKernel);

} // namespace lmf
