// Tile: a sheet covered with copies of the picture, from the top left. Width and Depth are the sheet's size in pixels,
// at least that of the picture; "Integral size" rounds it up to whole copies.
#include <cstring>

#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    NumberEdit(960, "Width:", &P::FilterTileWide, {16, 10000})
        .In(Unit::Pixels)
        .Help("How wide the sheet of copies is; at least as wide as the picture."),
    NumberEdit(961, "Depth:", &P::FilterTileDeep, {16, 10000})
        .In(Unit::Pixels)
        .Help("How high the sheet of copies is; at least as high as the picture."),
    CheckBox(962, "Integral size", &P::FilterTileIntegral)
        .Help("Makes the sheet large enough for whole copies; otherwise those at its edges are cut."),
};

int32_t SheetSide(int32_t wanted, int32_t side, bool integral) {
    const int32_t least = std::max(wanted, side);
    const int32_t rest = integral ? least % side : 0;
    return rest == 0 ? least : least - rest + side;
}

DibHandle TileKernel(const ReadView &source, FilterContext &context) {
    const int32_t width = source.width, height = source.height;
    const bool integral = context.FilterTileIntegral != 0;
    LockedDib result(DibCreateLike(source, SheetSide(context.FilterTileWide, width, integral),
                                   SheetSide(context.FilterTileDeep, height, integral)));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    for (int32_t x = 0; x < to.width; x += width) DibCopyRect(to, x, 0, source, 0, 0, width, height);
    for (int32_t y = height; y < to.height; y++)
        std::memcpy(to.Row(y), to.Row(y - height), static_cast<size_t>(to.stride));
    return result.Release();
}

} // namespace

extern constexpr Filter kTile = MakeFilter<kPage>(TileKernel);

} // namespace lmf
