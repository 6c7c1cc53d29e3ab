// Big Screen: a video wall seen from near. Each cell becomes a soft round lamp in the cell's average colour, on the
// paper colour. Size is the distance of the lamps in pixels.
#include "engine/filter.h"
#include "filters/artistic/resized_part.h"
#include "image/core/byte_pass.h"
#include "image/core/cell_means.h"
#include "image/core/rows.h"
#include "image/draw/gdi_canvas.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(250, "Size:", &P::FilterBigscreenSize, {10, 96})
        .In(Unit::Pixels)
        .Help("Makes each lamp of the screen this wide and high."),
};

/// A lamp of about `size` pixels, bright in its middle and black in its corners: rings drawn at twice the size.
DibHandle DrawLamp(int32_t size, FilterContext &context) {
    GdiCanvas canvas;
    if (!GdiCanvasOpen(2 * size, 2 * size, &canvas)) return nullptr;
    const int32_t overhang = 2 * size / 4;
    for (int32_t i = 0; i < size; i++) {
        const auto grey = static_cast<uint32_t>(static_cast<double>(i + 1) / size * 255);
        const int32_t first = i - overhang, last = 2 * size - i + overhang;
        GdiCanvasPaint(canvas, EllipseShape({first, first, last, last}), PackColor(grey, grey, grey));
    }
    GdiCanvasClose(&canvas, true);
    const LockedDib drawing(canvas.picture.Release());
    return ResizePart(drawing, 50, context);
}

DibHandle BigScreenKernel(const ReadView &source, FilterContext &context) {
    const LockedDib lampPicture(DrawLamp(context.FilterBigscreenSize, context));
    BytePass pass(source);
    if (!lampPicture || !pass.IsColor()) return nullptr;
    const ReadView lamp = lampPicture;
    const int32_t width = source.width, height = source.height;
    // Lamps that stick out do so alike on both sides.
    const int32_t cutLeft = width % lamp.width / 2, cutTop = height % lamp.height / 2;
    CellMeans means(width, 3, lamp.width, cutLeft);
    // How much of the paper is seen in each row of a row of lamps.
    BlockArray<uint8_t> paperShares(static_cast<uint64_t>(width) * static_cast<uint64_t>(lamp.height));
    if (!means || !paperShares) return nullptr;
    const auto shareRow = [&](int32_t y) { return &paperShares[int64_t{width} * y]; };
    for (int32_t y = 0; y < lamp.height; y++) {
        for (int32_t x = 0; x < width; x++) {
            const uint32_t light = DibGetPixel(lamp, (x + cutLeft) % lamp.width, y);
            shareRow(y)[x] = static_cast<uint8_t>(255 - RedOf(light));
        }
    }
    for (int32_t top = -cutTop; top < height; top += lamp.height) {
        const int32_t first = std::max(top, 0), end = std::min(top + lamp.height, height);
        const uint8_t *colors = means.Of(pass.From(), first, end);
        for (int32_t y = first; y < end; y++)
            TintRow(pass.To().Row(y), colors, shareRow(y - top), width, context.paperColor);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kBigScreen = MakeFilter<kPage>(BigScreenKernel);

} // namespace lmf
