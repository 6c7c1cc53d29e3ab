#include "image/draw/gradient_picture.h"

#include <cmath>

#include "image/color/palette.h"
#include "image/draw/gdi_canvas.h"

namespace lmf {

namespace {

constexpr int32_t kBands = 256;

/// Turns points around a centre, clockwise. Points are whole: what is left over is cut off.
struct Turn {
    DrawPoint centre;
    float cosine, sine;

    DrawPoint operator()(DrawPoint point) const {
        const auto dx = static_cast<double>(point.x - centre.x), dy = static_cast<double>(point.y - centre.y);
        return {static_cast<int64_t>(static_cast<double>(centre.x) + dx * cosine - dy * sine),
                static_cast<int64_t>(static_cast<double>(centre.y) + dx * sine + dy * cosine)};
    }
    /// The box's corners in order, the first one being left and top.
    std::array<DrawPoint, 4> operator()(const DrawBox &box) const {
        return {(*this)(DrawPoint{box.left, box.top}), (*this)(DrawPoint{box.right, box.top}),
                (*this)(DrawPoint{box.right, box.bottom}), (*this)(DrawPoint{box.left, box.bottom})};
    }
};

/// Bands lie across the box around the turned picture, and are then turned as the picture was. Each reaches to the next
/// whole row, over which the next band is painted.
void PaintLinear(const GdiCanvas &canvas, Color color1, Color color2, int32_t angle) {
    const DrawBox whole = canvas.Bounds();
    constexpr double kRadians = 0.01745328;
    const auto radians = static_cast<float>(angle * kRadians);
    const Turn turn = {{whole.Width() / 2, whole.Height() / 2}, std::cos(radians), std::sin(radians)};
    constexpr int64_t kMargin = 2;
    const auto corners = turn(DrawBox{-kMargin, -kMargin, whole.right + kMargin, whole.bottom + kMargin});
    const DrawBox box = PolygonShape(corners, PolygonFill::kAlternate).bounds;
    const int64_t span = box.Height();
    for (int64_t i = 0; i < kBands; i++) {
        const int64_t end = ((i + 1) * span + kBands - 1) / kBands;
        const auto band = turn(DrawBox{box.left, box.top + i * span / kBands, box.right, box.top + end});
        GdiCanvasPaint(canvas, PolygonShape(band, PolygonFill::kAlternate),
                       MixColors(color2, color1, static_cast<float>(i) / kBands));
    }
}

/// A ray's angle in degrees, from 0 to 360; `dx` and `dy` lead from the centre to a pixel.
double RayAngle(int32_t dx, int32_t dy) {
    if (dx == 0) return dy <= 0 ? 90 : 270;
    constexpr double kDegrees = 57.29577951308232;
    double angle = std::atan(static_cast<double>(dy) / dx) * kDegrees;
    if (dx > 0) angle += 180;
    while (angle < 0) angle += 360;
    return angle;
}

void PaintConic(const GdiCanvas &canvas, Color color1, Color color2, int32_t offsetX, int32_t offsetY, int32_t angle) {
    const WriteView &view = canvas.lock->view;
    const auto centreX = static_cast<int32_t>((offsetX / 100.0 + 0.5) * view.width);
    const auto centreY = static_cast<int32_t>((0.5 - offsetY / 100.0) * view.height);
    int32_t rotation = 360 - angle;
    if (rotation < 0) rotation += 360;
    Color ramp[kBands + 1];
    for (int32_t i = 0; i <= kBands; i++) ramp[i] = MixColors(color1, color2, static_cast<float>(i) / kBands);
    for (int32_t y = 0; y < view.height; y++) {
        uint8_t *row = view.Row(y);
        for (int32_t x = 0; x < view.width; x++) {
            double ray = RayAngle(x - centreX, y - centreY) + rotation;
            while (ray > 360) ray -= 360;
            if (ray > 180) ray = 360 - ray;
            const auto band = static_cast<int32_t>(ray / 180 * kBands);
            StoreBgr(row + static_cast<ptrdiff_t>(x) * 3, ramp[std::clamp(band, 0, kBands)]);
        }
    }
}

/// Rings around a middle that drifts from ring to ring. They are painted from the last one to the first, so that none
/// is painted where it will be hidden. All in single precision.
/// @return false without memory
template <typename Shape>
bool PaintRings(const GdiCanvas &canvas, Color color1, Color color2, int32_t offsetX, int32_t offsetY) {
    const WriteView &view = canvas.lock->view;
    const float width = static_cast<float>(view.width), height = static_cast<float>(view.height);
    const auto halfWidth = static_cast<float>(view.width / 2), halfHeight = static_cast<float>(view.height / 2);
    const auto count = static_cast<int32_t>(std::sqrt(halfWidth * halfWidth + halfHeight * halfHeight) + 0.5f);
    const auto rings = static_cast<float>(count);
    const float a = width * std::sqrt(2.0f), b = height * std::sqrt(2.0f);
    float left = width / 2 - a / 2, right = width / 2 + a / 2, top = height / 2 - b / 2, bottom = height / 2 + b / 2;

    RowGaps gaps(view.width);
    BlockArray<Shape> shapes(static_cast<uint64_t>(count) + 1);
    if (!gaps || !shapes) return false;
    const float stepX = a / 2 / rings, stepY = b / 2 / rings;
    const float driftX = a / rings * static_cast<float>(offsetX) / 100;
    const float driftY = b / rings * static_cast<float>(offsetY) / 100;
    const auto whole = [](float side) { return static_cast<int64_t>(side); };
    for (int32_t i = 0; i < count; i++) {
        shapes[i] = Shape(DrawBox{whole(left), whole(top), whole(right), whole(bottom)});
        left += stepX + driftX;
        right += driftX - stepX;
        top += stepY + driftY;
        bottom += driftY - stepY;
    }
    for (int32_t y = 0; y < view.height; y++) {
        uint8_t *row = view.Row(y);
        gaps.Reset(0, view.width);
        PaintLastFirst(gaps, y, shapes.data, count, [&](int32_t from, int32_t to, int64_t i) {
            FillPixels(row, 24, from, to, MixColors(color1, color2, static_cast<float>(i) / rings));
        });
        gaps.Take({0, view.width}, [&](int32_t from, int32_t to) { FillPixels(row, 24, from, to, color1); });
    }
    return true;
}

} // namespace

DibHandle GradientPicture(Color color1, Color color2, int32_t width, int32_t height, int32_t offsetX, int32_t offsetY,
                          int32_t angle, int32_t type) {
    GdiCanvas canvas;
    if (!GdiCanvasOpen(width, height, &canvas)) return nullptr;
    bool painted = true;
    switch (type) {
    case kGradientLinear:
        PaintLinear(canvas, color1, color2, angle);
        break;
    case kGradientConic:
        PaintConic(canvas, color1, color2, offsetX, offsetY, angle);
        break;
    case kGradientSpherical:
        painted = PaintRings<EllipseShape>(canvas, color1, color2, offsetX, offsetY);
        break;
    default:
        painted = PaintRings<RectangleShape>(canvas, color1, color2, offsetX, offsetY);
    }
    GdiCanvasClose(&canvas, painted);
    return canvas.picture.Release();
}

} // namespace lmf
