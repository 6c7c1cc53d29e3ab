#include "image/core/pixel_pass.h"

namespace lmf {

PixelPass::PixelPass(const ReadView &source, ResultPalette palette)
    : from(source),
      result(palette == ResultPalette::OfSource ? DibCreateLike(source, source.width, source.height)
                                                : DibCreate(source.width, source.height, nullptr, source.bits)),
      to(result.View()) {}

PixelPass::PixelPass(const ReadView &source, uint32_t depth, const Palette768 *palette)
    : from(source), result(DibCreate(source.width, source.height, palette, depth)), to(result.View()) {}

} // namespace lmf
