// Emboss: relief lit from one corner. Each pixel becomes the sum of a square of neighbours, weighted by a bell curve
// that counts positive in one quadrant, negative in the others and not at all on one diagonal. "Radius:" is the side of
// the square, made odd; "Depth:" ten times the width of the bell, in pixels.
#include "engine/filter.h"
#include "image/blur/convolve_square.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(400, "Radius:", &P::FilterEmbossWidth, {4, 15}),
    Slider(401, "Depth:", &P::FilterEmbossSigma, {15, 50}),
};

static DibHandle EmbossKernel(const ReadView &source, FilterContext &context) {
    const int32_t order = context.FilterEmbossWidth | 1, half = order / 2;
    SquareKernel kernel;
    if (!BuildBell(order, context.FilterEmbossSigma / 10.0, &kernel)) return nullptr;
    double *weight = kernel->data;
    for (int32_t v = -half; v <= half; v++) {
        for (int32_t u = -half; u <= half; u++, weight++)
            *weight = u == -v ? 0.0 : *weight * (u >= 0 && v >= 0 ? 8.0 : -8.0);
    }
    return ConvolveSquare(source, order, kernel->data, context.mode);
}

extern constexpr Filter kEmboss = MakeFilter<kPage>(EmbossKernel);

} // namespace lmf
