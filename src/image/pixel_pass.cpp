#include "image/pixel_pass.h"

namespace lmf {

static DibHandle MakeResult(const DibLock &from, ResultPalette kind) {
    if (!from) return nullptr;
    const DibView &view = from.view;
    return kind == ResultPalette::OfSource ? DibCreateLike(from, view.width, view.height)
                                           : DibCreate(view.width, view.height, nullptr, view.bits);
}

PixelPass::PixelPass(DibHandle source, ResultPalette palette)
    : from(source), result(MakeResult(from, palette)), to(result.handle) {}

PixelPass::PixelPass(DibHandle source, uint32_t depth, const Palette768 *palette)
    : from(source), result(from ? DibCreate(from.view.width, from.view.height, palette, depth) : nullptr),
      to(result.handle) {}

DibHandle PixelPass::Finish() {
    from.Unlock();
    to.Unlock();
    return result.Release();
}

} // namespace lmf
