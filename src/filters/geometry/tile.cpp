// Tile: a sheet covered with copies of the picture, from the top left. Width and Depth are the sheet's size in pixels,
// at least that of the picture; "Integral size" rounds it up to whole copies.
#include <cstring>

#include "engine/slots.h"
#include "image/dib_ops.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    NumberEdit(960, "Width:", &FilterParameters::FilterTileWide, {16, 10000}),
    NumberEdit(961, "Depth:", &FilterParameters::FilterTileDeep, {16, 10000}),
    CheckBox(962, "Integral size", &FilterParameters::FilterTileIntegral),
};

static int32_t SheetSide(int32_t wanted, int32_t side, bool integral) {
    const int64_t least = std::max(wanted, side);
    const int64_t rest = integral ? least % side : 0;
    return static_cast<int32_t>(std::min<int64_t>(rest == 0 ? least : least - rest + side, INT32_MAX));
}

static DibHandle TileKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const int32_t width = from.view.width, height = from.view.height;
    const bool integral = context->FilterTileIntegral != 0;
    DibOwner result(DibCreateLike(from, SheetSide(context->FilterTileWide, width, integral),
                                  SheetSide(context->FilterTileDeep, height, integral)));
    DibLock to(result.handle);
    if (!to) return nullptr;
    for (int64_t x = 0; x < to.view.width; x += width)
        DibCopyRect(to.image, static_cast<int32_t>(x), 0, from.image, 0, 0, width, height);
    for (int32_t y = height; y < to.view.height; y++)
        std::memcpy(to.view.Row(y), to.view.Row(y - height), static_cast<size_t>(to.view.stride));
    to.Unlock();
    return result.Release();
}

extern constexpr FilterSlots kTile = MakeSlots<kPage>(TileKernel);

} // namespace lmf
