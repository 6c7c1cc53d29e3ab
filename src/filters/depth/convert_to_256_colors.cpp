// Convert to 256 Colors: finds a palette of at most 256 colours for the picture and draws the picture in it. A picture
// of few colours keeps them, at the least depth that holds them. "Dither" spreads the error of each pixel over its
// neighbours.
#include "engine/slots.h"
#include "image/dib_ops.h"
#include "image/dither.h"
#include "image/octree.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(340, "Dither", &FilterParameters::FilterConvertTo256Dither),
};

/// The least number of bits, 1 to 8, that holds as many colours.
static uint32_t BitsFor(uint32_t colors) {
    uint32_t bits = 1;
    while (bits < 8 && colors > 1u << bits) bits++;
    return bits;
}

static DibHandle ConvertTo256ColorsKernel(DibHandle source, FilterContext *context) {
    uint32_t depth = 0;
    if (!DibInfo(source, nullptr, nullptr, &depth, nullptr)) return nullptr;
    DibOwner expanded(depth == 24 ? nullptr : ExpandToRgb(source));
    DibHandle working = depth == 24 ? source : expanded.handle;
    Palette768 palette;
    uint32_t colors = 256;
    if (!OctreePalette(working, &palette, &colors)) return nullptr;
    return context->FilterConvertTo256Dither != 0 ? ErrorDiffuse(working, palette, BitsFor(colors))
                                                  : RemapNearest(working, palette, BitsFor(colors));
}

extern constexpr FilterSlots kConvertTo256Colors = MakeSlots<kPage>(ConvertTo256ColorsKernel);

} // namespace lmf
