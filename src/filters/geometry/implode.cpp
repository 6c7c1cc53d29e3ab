// Implode and Explode: magnify what lies about a point, or draw it together. The amount is the strength in percent; the
// offsets are the point's place in percent of the sides, and with it the reach: it ends at an ellipse through the left
// or the upper edge.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "image/geometry/ellipse.h"

namespace lmf {

static constexpr PageControl kExplodePage[] = {
    Slider(430, "Amount:", &P::FilterExplodeRadius, {1, 100}),
    Slider(431, "Horz. Offset:", &P::FilterExplodeXOff, {10, 90}),
    Slider(432, "Vert. Offset:", &P::FilterExplodeYOff, {10, 90}),
};

static constexpr PageControl kImplodePage[] = {
    Slider(530, "Amount:", &P::FilterImplodeRadius, {1, 100}),
    Slider(531, "Horz. Offset:", &P::FilterImplodeXOff, {10, 90}),
    Slider(532, "Vert. Offset:", &P::FilterImplodeYOff, {10, 90}),
};

/// The angle, 0 at the centre and a right angle at the rim, whose sine scales distances.
LMF_MULTIVERSION
static void AnglesOfRow(double *__restrict angles, int32_t begin, int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = ellipse.Dx(x);
        angles[x] = std::sqrt(dx * dx + dy * dy) * (std::numbers::pi / 2) / ellipse.radius;
    }
}

LMF_MULTIVERSION
static void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict factors, int32_t begin,
                     int32_t end, Ellipse ellipse, double dy) {
    for (int32_t x = begin; x < end; x++) {
        xs[x] = factors[x] * ellipse.Dx(x) / ellipse.xScale + ellipse.cx;
        ys[x] = factors[x] * dy / ellipse.yScale + ellipse.cy;
    }
}

/// The ellipse about the point at these parts of the sides.
static Ellipse EllipseOf(const ReadView &view, double xPart, double yPart) {
    const double width = view.width, height = view.height;
    Ellipse ellipse{.cx = xPart * width, .cy = yPart * height, .radius = xPart * width};
    if (view.height < view.width) ellipse.yScale = width / height;
    if (view.width < view.height) {
        ellipse.xScale = height / width;
        ellipse.radius = ellipse.cy;
    }
    return ellipse;
}

/// @param amount  1 magnifies most, -1 draws together most
/// @param xPercent, yPercent  of the sides, the place of the centre
static DibHandle ImplodeBy(const ReadView &source, const FilterContext &context, double amount, int32_t xPercent,
                           int32_t yPercent) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &view = pass.from;
    DibCopyRect(pass.to, 0, 0, pass.from, 0, 0, view.width, view.height);
    const Ellipse ellipse = EllipseOf(view, xPercent / 100.0, yPercent / 100.0);
    const bool done = WarpInside(
        pass, ellipse, context.paperColor,
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

static DibHandle ImplodeKernel(const ReadView &source, FilterContext &context) {
    return ImplodeBy(source, context, context.FilterImplodeRadius / 100.0, context.FilterImplodeXOff,
                     context.FilterImplodeYOff);
}

static DibHandle ExplodeKernel(const ReadView &source, FilterContext &context) {
    return ImplodeBy(source, context, -(context.FilterExplodeRadius / 100.0), context.FilterExplodeXOff,
                     context.FilterExplodeYOff);
}

extern constexpr Filter kExplode = MakeFilter<kExplodePage>(ExplodeKernel);
extern constexpr Filter kImplode = MakeFilter<kImplodePage>(ImplodeKernel);

} // namespace lmf
