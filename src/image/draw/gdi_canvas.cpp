#include "image/draw/gdi_canvas.h"

namespace lmf {

DrawBox GdiCanvas::Bounds() const {
    return {origin.x, origin.y, origin.x + lock->view.width, origin.y + lock->view.height};
}

DrawBox GdiCanvas::Visible() const {
    const DrawBox bounds = Bounds();
    return {std::max(bounds.left, clip.left), std::max(bounds.top, clip.top), std::min(bounds.right, clip.right),
            std::min(bounds.bottom, clip.bottom)};
}

int32_t GdiCanvasOpen(int32_t width, int32_t height, GdiCanvas *canvas, DrawPoint origin) {
    GdiCanvasClose(canvas, false);
    canvas->picture.Reset(DibCreate(width, height, nullptr, 24));
    canvas->lock.emplace(canvas->picture.handle);
    if (!*canvas->lock) {
        GdiCanvasClose(canvas, false);
        return 0;
    }
    canvas->origin = origin;
    canvas->clip = canvas->Bounds();
    return 1;
}

void GdiCanvasClose(GdiCanvas *canvas, bool keep) {
    canvas->lock.reset();
    if (!keep) canvas->picture.Reset();
}

} // namespace lmf
