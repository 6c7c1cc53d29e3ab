// Swirl: twists the picture about its middle. The angle is how far the very middle turns, in degrees stored with 1440
// added; the twist fades to nothing at an ellipse that touches the picture's longer side.
#include <cmath>
#include <cstring>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/geometry/ellipse.h"

namespace lmf {

namespace {

constexpr int32_t kDegreesOffset = 1440;

// Restoring puts the stored form where the degrees belong, so the stored value then lies above the spin's top.
constexpr int32_t kRestored = kFactorySettings.FilterSwirlDegrees + kDegreesOffset;

constexpr PageControl kPage[] = {
    NumberEdit(950, "Angle:", &P::FilterSwirlDegrees, {0, 2 * kDegreesOffset})
        .ShownLess(kDegreesOffset)
        .Stored(0, kRestored)
        .Restores(kRestored)
        .In(Unit::Degrees)
        .Help("How far the middle of the picture turns; negative angles twist the other way."),
};

/// Angles of rotation, in radians, that fall with the square of the way from the centre to the rim.
LMF_MULTIVERSION
void AnglesOfRow(double *__restrict angles, int32_t begin, int32_t end, Ellipse ellipse, double dy,
                 double centreAngle) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        const double t = 1 - std::sqrt(dx * dx + dy * dy) / ellipse.radius;
        angles[x] = centreAngle * (t * t);
    }
}

LMF_MULTIVERSION
void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict cosines,
              const double *__restrict sines, int32_t begin, int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        xs[x] = (cosines[x] * dx - sines[x] * dy) / ellipse.xScale + ellipse.cx;
        ys[x] = (sines[x] * dx + cosines[x] * dy) / ellipse.yScale + ellipse.cy;
    }
}

DibHandle SwirlKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source, Alpha::Carried);
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    // All bytes of the rows, the padding with them.
    std::memcpy(pass.To().bottom, from.bottom, static_cast<size_t>(from.stride) * static_cast<size_t>(from.height));
    const double cx = from.width * 0.5, cy = from.height * 0.5;
    const Ellipse ellipse = EllipseAbout(cx, cy, std::max(cx, cy), from);
    const double centreAngle = (context.FilterSwirlDegrees - kDegreesOffset) * std::numbers::pi / 180;
    // Pixels have three bytes stored, so that a fourth one stays; those that cannot be read have none.
    const InsideAlpha alpha = source.bits == 32 ? InsideAlpha::Stays : InsideAlpha::Cleared;
    const bool done = WarpInside(
        pass, ellipse, alpha, context.paperColor,
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
    return done ? pass.Finish() : nullptr;
}

} // namespace

extern constexpr Filter kSwirl = MakeFilter<kPage>(SwirlKernel);

} // namespace lmf
