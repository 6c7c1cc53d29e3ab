// Halftone: a printer's screen in black and white. Each cell shows a shape whose area follows the darkness of the
// picture there. Screen size is the side of a cell in pixels, Screen type the shape.
#include <cstring>

#include "engine/filter.h"
#include "image/core/cell_means.h"
#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/steps.h"

namespace lmf {

namespace {

enum Screen : int32_t { kEllipse, kHorizontalRaster, kVerticalRaster, kCube, kDiamond };

constexpr PageControl kPage[] = {
    Slider(510, "Screen size:", &P::FilterHalftoneSize, {4, 64})
        .In(Unit::Pixels)
        .Help("Makes each cell of the screen this wide and high."),
    Combo(511, "Screen type:", &P::FilterHalftoneScreen, "Ellipse;Horizontal raster;Vertical raster;Cube;Diamond")
        .Help("Chooses the shape that grows where the picture is dark."),
};

/// Paints the shape of a tile of `side` pixels around its centre in black. It grows with `step` of `steps`.
void PaintShape(const GdiCanvas &canvas, int32_t screen, int32_t side, DrawPoint centre, int32_t step, int32_t steps) {
    const auto grown = [=](float largest, float rounding) {
        return static_cast<int32_t>(largest * static_cast<float>(step) / static_cast<float>(steps) + rounding);
    };
    const auto box = [&](int32_t dx, int32_t dy) {
        return DrawBox{centre.x - dx, centre.y - dy, centre.x + dx, centre.y + dy};
    };
    const int32_t half = side / 2;
    const auto halfSide = static_cast<float>(half);
    const int32_t radius = grown(halfSide * 1.414f, 0.0f);
    const int32_t reach = grown(halfSide, 0.5f);
    const int32_t corner = grown(static_cast<float>(side), 0.5f);
    switch (screen) {
    case kEllipse:
        return GdiCanvasPaint(canvas, EllipseShape(box(radius, radius)), 0);
    case kHorizontalRaster:
        return GdiCanvasPaint(canvas, RectangleShape(box(half, reach)), 0);
    case kVerticalRaster:
        return GdiCanvasPaint(canvas, RectangleShape(box(reach, half)), 0);
    case kCube:
        return GdiCanvasPaint(canvas, RectangleShape(box(reach, reach)), 0);
    case kDiamond: {
        const DrawPoint corners[] = {{centre.x - corner, centre.y},
                                     {centre.x, centre.y - corner},
                                     {centre.x + corner, centre.y},
                                     {centre.x, centre.y + corner}};
        return GdiCanvasPaint(canvas, PolygonShape(corners, PolygonFill::kWinding), 0);
    }
    }
}

/// A strip of `size` square tiles of `size` pixels below each other, grey, the darkest first: drawn at four times the
/// size.
DibHandle DrawScreen(int32_t screen, int32_t size) {
    const int32_t side = 4 * size;
    GdiCanvas canvas;
    if (!GdiCanvasOpen(side, side * size, &canvas)) return nullptr;
    GdiCanvasPaint(canvas, RectangleShape(canvas.Bounds()), 0xFFFFFF);
    for (int32_t i = 0; i < size; i++) {
        const int32_t top = side * i;
        canvas.clip = {0, top, side, top + side};
        PaintShape(canvas, screen, side, {side / 2, top + side / 2}, size - 1 - i, size);
    }
    GdiCanvasClose(&canvas, true);
    const LockedDib drawing(canvas.picture.Release());
    const LockedDib tiles(DibScaleSteps(drawing, 25, 25));
    return tiles ? DibToGrey(tiles) : nullptr;
}

DibHandle HalftoneKernel(const ReadView &source, FilterContext &context) {
    const int32_t size = context.FilterHalftoneSize;
    const LockedDib grey(DibToGrey(source)), screen(DrawScreen(context.FilterHalftoneScreen, size));
    LockedDib result(DibCreateGrey(source.width, source.height));
    CellMeans means(source.width, 1, size);
    if (!grey || !screen || !result || !means) return nullptr;
    const ReadView tiles = screen;
    for (int32_t top = 0; top < source.height; top += size) {
        const int32_t bottom = std::min(top + size, source.height);
        const uint8_t *tones = means.Of(grey, top, bottom);
        for (int32_t y = top; y < bottom; y++) {
            uint8_t *row = result.View().Row(y);
            for (int32_t x = 0; x < source.width; x += size) {
                const int32_t tile = tones[x] * size >> 8;
                std::memcpy(row + x, tiles.Row(tile * size + y - top),
                            static_cast<size_t>(std::min(size, source.width - x)));
            }
        }
    }
    return result.Release();
}

} // namespace

extern constexpr Filter kHalftone = MakeFilter<kPage>(HalftoneKernel);

} // namespace lmf
