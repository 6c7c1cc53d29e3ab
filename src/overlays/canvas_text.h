// Texts on canvases, in the coordinates of the drawing that a canvas is a window on.
#pragma once

#include "image/draw/gdi_canvas.h"
#include "overlays/text_layout.h"

namespace lmf {

/// A text in a box of a drawing, as DrawTextPlain takes it. Font and text are borrowed.
struct PlacedText {
    TextFont *font;
    const char *text;
    TextRect box;
    uint32_t format; ///< of TextFormat
};

/// The surface of an open canvas, whose origin is the surface's first pixel.
[[nodiscard]] TextSurface SurfaceOf(const GdiCanvas &canvas);

/// Opens a black canvas on that part of a drawing of width x height pixels which a text covers, and `margin` pixels
/// around it; of one pixel where the text covers nothing of the drawing.
/// @return false when memory is short
[[nodiscard]] bool OpenTextCanvas(const PlacedText &text, const TextInk &ink, int32_t margin, int32_t width,
                                  int32_t height, GdiCanvas *canvas);

/// Draws a text on an open canvas.
/// @return false when memory is short
[[nodiscard]] bool CanvasDrawText(const GdiCanvas &canvas, const PlacedText &text, const TextInk &ink);

} // namespace lmf
