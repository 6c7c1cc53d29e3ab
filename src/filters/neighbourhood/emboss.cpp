// Emboss: relief lit from one corner. Each pixel becomes the sum of a square of neighbours, weighted by a bell curve
// that counts positive in one quadrant, negative in the others and not at all on one diagonal. "Radius:" is the side of
// the square, made odd; "Depth:" ten times the width of the bell, in pixels.
#include "engine/filter.h"
#include "image/blur/convolve_square.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(400, "Radius:", &P::FilterEmbossWidth, {4, SquareKernel::kMostOrder})
        .In(Unit::Pixels)
        .Help("Side of the square of pixels that makes the relief; an even number counts as the next odd one."),
    Slider(401, "Depth:", &P::FilterEmbossSigma, {15, 50})
        .In(Unit::Pixels, 10)
        .Help("How far from its middle the square still counts; higher values give a broader relief."),
};

DibHandle EmbossKernel(const ReadView &source, FilterContext &context) {
    SquareKernel kernel = BellKernel(context.FilterEmbossWidth | 1, context.FilterEmbossSigma / 10.0);
    const int32_t half = kernel.order / 2;
    double *weight = kernel.weights;
    for (int32_t v = -half; v <= half; v++) {
        for (int32_t u = -half; u <= half; u++, weight++)
            *weight = u == -v ? 0.0 : *weight * (u >= 0 && v >= 0 ? 8.0 : -8.0);
    }
    return ConvolveSquare(source, kernel, context.mode);
}

} // namespace

extern constexpr Filter kEmboss = MakeFilter<kPage>(EmbossKernel);

} // namespace lmf
