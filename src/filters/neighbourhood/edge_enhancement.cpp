// Edge Enhancement: an integer window that weighs each pixel against its neighbours, in three strengths.
#include "engine/filter.h"
#include "image/blur/convolve5x5.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(410, "Level:", &P::FilterEdgeEnhanceLevel, "Light;Medium;Heavy")
        .Help("How strongly each pixel is set off from its neighbours."),
};

/// A window of the centre, its four edge neighbours and its four corner neighbours.
constexpr Window5x5 Ring(int16_t centre, int16_t edge, int16_t corner, int16_t divisor) {
    Window5x5 window{};
    for (int32_t j = -1; j <= 1; j++)
        for (int32_t i = -1; i <= 1; i++) window.weights[12 + j * 5 + i] = i != 0 && j != 0 ? corner : edge;
    window.weights[12] = centre;
    window.divisor = divisor;
    return window;
}

/// Light, medium and heavy.
constexpr Window5x5 kLevels[] = {Ring(13, -1, -1, 7), Ring(5, -1, 0, 1), Ring(9, -1, -1, 5)};

DibHandle EdgeEnhancementKernel(const ReadView &source, FilterContext &context) {
    return Convolve5x5(source, kLevels[context.FilterEdgeEnhanceLevel], context.byteOffsets);
}

} // namespace

extern constexpr Filter kEdgeEnhancement = MakeFilter<kPage>(EdgeEnhancementKernel);

} // namespace lmf
