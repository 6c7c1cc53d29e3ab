// Convert to 256 Colors: finds a palette of at most 256 colours for the picture and draws the picture in it. A picture
// of few colours keeps them, at the least depth that holds them. "Dither" spreads the error of each pixel over its
// neighbours.
#include "engine/filter.h"
#include "image/color/dither.h"
#include "image/color/octree.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(340, "Dither", &P::FilterConvertTo256Dither)
        .Help("Mixes the few colors in patterns of dots, so that shades between them can be seen."),
};

/// The least number of bits, 1 to 8, that holds as many colours.
uint32_t BitsFor(uint32_t colors) {
    uint32_t bits = 1;
    while (bits < 8 && colors > 1u << bits) bits++;
    return bits;
}

DibHandle ConvertTo256ColorsKernel(const ReadView &source, FilterContext &context) {
    const LockedDib expanded(source.bits == 24 ? nullptr : ExpandToRgb(source));
    if (source.bits != 24 && !expanded) return nullptr;
    const ReadView working = source.bits == 24 ? source : ReadView(expanded);
    Palette768 palette;
    uint32_t colors = 256;
    if (!OctreePalette(working, &palette, &colors)) return nullptr;
    const MonoTone tone = {context.ditherBrightness, context.ditherContrast};
    return context.FilterConvertTo256Dither != 0 ? ErrorDiffuse(working, palette, BitsFor(colors), tone)
                                                 : RemapNearest(working, palette, BitsFor(colors));
}

} // namespace

extern constexpr Filter kConvertTo256Colors = MakeFilter<kPage>(ConvertTo256ColorsKernel);

} // namespace lmf
