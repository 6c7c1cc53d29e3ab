#include "image/geometry/pinch.h"

#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "image/core/dib_ops.h"
#include "image/geometry/ellipse.h"

namespace lmf {

namespace {

/// The angle, 0 at the centre and a right angle at the rim, whose sine scales distances.
LMF_MULTIVERSION
void AnglesOfRow(double *__restrict angles, int32_t begin, int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        angles[x] = std::sqrt(dx * dx + dy * dy) * (std::numbers::pi / 2) / ellipse.radius;
    }
}

LMF_MULTIVERSION
void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict factors, int32_t begin,
              int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        xs[x] = factors[x] * ellipse.Dx(x) / ellipse.xScale + ellipse.cx;
        ys[x] = factors[x] * dy / ellipse.yScale + ellipse.cy;
    }
}

} // namespace

DibHandle DibPinch(const ReadView &source, double amount, double xPart, double yPart, Color background) {
    BytePass pass(source, Alpha::Carried);
    if (!pass) return nullptr;
    DibCopyRect(pass.To(), 0, 0, pass.From(), 0, 0, source.width, source.height);
    const double cx = xPart * source.width, cy = yPart * source.height;
    const Ellipse ellipse = EllipseAbout(cx, cy, source.width < source.height ? cy : cx, source);
    const bool done = WarpInside(
        pass, ellipse, InsideAlpha::Cleared, background,
        [&](const WarpTables &tables, int32_t begin, int32_t end, double dy) {
            AnglesOfRow(tables.first, begin, end, ellipse, dy);
            for (int32_t x = begin; x < end; x++) {
                const double angle = tables.first[x];
                tables.first[x] = angle == 0 ? 1.0 : std::pow(std::sin(angle), amount);
            }
        },
        [&](const WarpTables &tables, int32_t begin, int32_t end, double dy) {
            PlaceRow(tables.xs, tables.ys, tables.first, begin, end, ellipse, dy);
        });
    return done ? pass.Finish() : nullptr;
}

} // namespace lmf
