// Bayer Dither: reduces a picture to 2, 8 or 256 fixed colours with an 8 by 8 pattern of thresholds. "Type" chooses
// black and white, the eight corners of the colour cube in a 16-colour picture, or 8 levels of red and green by 4 of
// blue.
#include "engine/slots.h"
#include "image/dither.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Combo(240, "Type:", &FilterParameters::FilterBayerType, "2 colors;16 colors;256 colors"),
};

static DibHandle BayerDitherKernel(DibHandle source, FilterContext *context) {
    switch (context->FilterBayerType) {
    case 0:
        return BayerMono(source);
    case 1:
        return BayerEight(source);
    default:
        return BayerRgb332(source);
    }
}

extern constexpr FilterSlots kBayerDither = MakeSlots<kPage>(BayerDitherKernel);

} // namespace lmf
