// Swirl: twists the picture about its middle. The angle is how far the very middle turns, in degrees stored with 1440
// added; the twist fades to nothing at an ellipse that touches the picture's longer side.
#include <cmath>
#include <cstring>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "image/geometry/ellipse.h"

namespace lmf {

static constexpr int32_t kDegreesOffset = 1440;

// Restoring puts the stored form where the degrees belong, so the stored value then lies above the spin's top.
static constexpr PageControl kPage[] = {
    NumberEdit(950, "Angle:", &P::FilterSwirlDegrees, {0, 2880})
        .ShownLess(kDegreesOffset)
        .Stored(0, 2925)
        .Restores(2925),
};

/// Angles of rotation, in radians, that fall with the square of the way from the centre to the rim.
LMF_MULTIVERSION
static void AnglesOfRow(double *__restrict angles, int32_t begin, int32_t end, Ellipse ellipse, double dy,
                        double centreAngle) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        const double t = 1 - std::sqrt(dx * dx + dy * dy) / ellipse.radius;
        angles[x] = centreAngle * (t * t);
    }
}

LMF_MULTIVERSION
static void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict cosines,
                     const double *__restrict sines, int32_t begin, int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        xs[x] = (cosines[x] * dx - sines[x] * dy) / ellipse.xScale + ellipse.cx;
        ys[x] = (sines[x] * dx + cosines[x] * dy) / ellipse.yScale + ellipse.cy;
    }
}

static Ellipse EllipseOf(const ReadView &view) {
    const double width = view.width, height = view.height;
    Ellipse ellipse{.cx = width * 0.5, .cy = height * 0.5, .radius = std::max(width * 0.5, height * 0.5)};
    if (view.width > view.height) ellipse.yScale = width / height;
    if (view.width < view.height) ellipse.xScale = height / width;
    return ellipse;
}

/// All bytes of the rows, the padding with them.
static void CopyBlock(const PixelPass &pass) {
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    if (to.bits == from.bits)
        std::memcpy(to.bottom, from.bottom, static_cast<size_t>(from.stride) * static_cast<size_t>(from.height));
    else
        DibCopyRect(pass.to, 0, 0, pass.from, 0, 0, from.width, from.height);
}

/// Swirl stores three bytes a pixel, so that a fourth one stays where it is.
static void KeepAlpha(const PixelPass &pass) {
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    if (from.bits != 32 || to.bits != 32) return;
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *source = from.Row(y);
        uint8_t *target = to.Row(y);
        for (ptrdiff_t x = 0; x < from.width; x++) target[x * 4 + 3] = source[x * 4 + 3];
    }
}

static DibHandle SwirlKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    CopyBlock(pass);
    const Ellipse ellipse = EllipseOf(pass.from);
    const double degrees = static_cast<double>(context.FilterSwirlDegrees) - kDegreesOffset;
    const double centreAngle = degrees * std::numbers::pi / 180;
    const bool done = WarpInside(
        pass, ellipse, context.paperColor,
        [&](const WarpTables &tables, int32_t begin, int32_t end, double dy) {
            AnglesOfRow(tables.first, begin, end, ellipse, dy, centreAngle);
            for (int32_t x = begin; x < end; x++) {
                const double angle = tables.first[x];
                tables.first[x] = std::cos(angle);
                tables.second[x] = std::sin(angle);
            }
        },
        [&](const WarpTables &tables, int32_t begin, int32_t end, double dy) {
            PlaceRow(tables.xs, tables.ys, tables.first, tables.second, begin, end, ellipse, dy);
        });
    if (!done) return nullptr;
    KeepAlpha(pass);
    return pass.Finish();
}

extern constexpr Filter kSwirl = MakeFilter<kPage>(SwirlKernel);

} // namespace lmf
