#include "overlays/canvas_text.h"

namespace lmf {

TextSurface SurfaceOf(const GdiCanvas &canvas) {
    const WriteView &view = canvas.lock->view;
    return {view.Row(0), view.width, view.height, -int64_t{view.stride}};
}

bool OpenTextCanvas(const PlacedText &text, const TextInk &ink, int32_t margin, int32_t width, int32_t height,
                    GdiCanvas *canvas) {
    TextRect bounds;
    if (!TextBounds(text.font, ink, text.text, text.box, text.format, &bounds)) return false;
    DrawBox part = {std::max<int64_t>(int64_t{bounds.left} - margin, 0),
                    std::max<int64_t>(int64_t{bounds.top} - margin, 0),
                    std::min<int64_t>(int64_t{bounds.right} + margin, width),
                    std::min<int64_t>(int64_t{bounds.bottom} + margin, height)};
    if (part.Width() < 1 || part.Height() < 1) part = {0, 0, 1, 1};
    return GdiCanvasOpen(static_cast<int32_t>(part.Width()), static_cast<int32_t>(part.Height()), canvas,
                         {part.left, part.top}) != 0;
}

bool CanvasDrawText(const GdiCanvas &canvas, const PlacedText &text, const TextInk &ink) {
    const auto left = static_cast<int32_t>(canvas.origin.x), top = static_cast<int32_t>(canvas.origin.y);
    TextRect box = {text.box.left - left, text.box.top - top, text.box.right - left, text.box.bottom - top};
    return DrawTextPlain({text.font, ink, SurfaceOf(canvas)}, text.text, &box, text.format) != 0;
}

} // namespace lmf
