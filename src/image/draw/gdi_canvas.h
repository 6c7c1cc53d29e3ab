// The off-screen surface that filters draw shapes on.
#pragma once

#include <algorithm>
#include <optional>

#include "image/core/dib.h"
#include "image/draw/row_painter.h"

namespace lmf {

/// A 24-bit picture with shapes painted on it in plain colours. It may be a window on a larger drawing: then shapes
/// keep the drawing's coordinates and the canvas holds the part that starts at its origin.
///
/// A pen is a shape of its own (Outline, InsideFrame, LineShape), painted after the fill; no pen is the fill alone.
struct GdiCanvas {
    DibOwner picture;            ///< what is drawn; the caller's to take after GdiCanvasClose with `keep`
    std::optional<DibLock> lock; ///< of the picture, while the canvas is open
    DrawBox clip;                ///< what may be painted, in the drawing's coordinates; crossed corners allow nothing
    DrawPoint origin = {0, 0};   ///< the top left corner in the drawing's coordinates

    /// The whole surface, in the drawing's coordinates. The canvas is open.
    DrawBox Bounds() const;
    /// The part of the surface that the clip allows to paint.
    DrawBox Visible() const;
};

/// Makes a black canvas of this size whose clip is the whole of it, at any origin. What the canvas held is let go.
/// @return 1, or 0 when a side is below 1, the picture would reach 4 GiB or memory is short.
[[nodiscard]] int32_t GdiCanvasOpen(int32_t width, int32_t height, GdiCanvas *canvas, DrawPoint origin = {0, 0});
/// Ends the drawing. With `keep` the picture stays in the canvas, unlocked, until it is taken or the canvas goes; else
/// it is freed.
void GdiCanvasClose(GdiCanvas *canvas, bool keep);

/// Paints a shape as far as the clip allows. The canvas is open.
template <typename Shape>
void GdiCanvasPaint(const GdiCanvas &canvas, const Shape &shape, Color color) {
    const WriteView &view = canvas.lock->view;
    const DrawPoint origin = canvas.origin;
    const DrawBox visible = canvas.Visible();
    const int64_t bottom = std::min(shape.bounds.bottom, visible.bottom);
    for (int64_t y = std::max(shape.bounds.top, visible.top); y < bottom; y++) {
        uint8_t *row = view.Row(static_cast<int32_t>(y - origin.y));
        ForEachSpan(shape, y, [&](const RowSpan &span) {
            const int64_t left = std::max(span.left, visible.left), right = std::min(span.right, visible.right);
            if (left < right)
                FillPixels(row, view.bits, static_cast<int32_t>(left - origin.x),
                           static_cast<int32_t>(right - origin.x), color);
        });
    }
}

} // namespace lmf
