// Bayer Dither: reduces a picture to 2, 8 or 256 fixed colours with an 8 by 8 pattern of thresholds. "Type" chooses
// black and white, the eight corners of the colour cube in a 16-colour picture, or 8 levels of red and green by 4 of
// blue.
#include "engine/filter.h"
#include "image/color/dither.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(240, "Type:", &P::FilterBayerType, "2 colors;16 colors;256 colors")
        .Help("Chooses black and white, the eight pure colors, or 256 colors spread evenly."),
};

enum BayerType : int32_t { kTwoColors, kSixteenColors, k256Colors };

DibHandle BayerDitherKernel(const ReadView &source, FilterContext &context) {
    switch (context.FilterBayerType) {
    case kTwoColors:
        return BayerMono(source);
    case kSixteenColors:
        return BayerEight(source);
    default:
        return BayerRgb332(source);
    }
}

} // namespace

extern constexpr Filter kBayerDither = MakeFilter<kPage>(BayerDitherKernel);

} // namespace lmf
