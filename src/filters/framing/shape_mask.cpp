// Shape mask: keeps what lies inside a shape and gives the rest to the paper colour.
// Shape is its outline, Size its size in percent of the picture's sides, Horizontal and Vertical the place of its
// middle in percent of them. Opacity is how much of the rest is covered. A line of Line size pixels runs along the
// outline, half of it inside, 0 for none. With Alpha on the picture stays, and the second picture is cut to the shape.
#include <cmath>
#include <cstring>
#include <variant>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/core/div255.h"
#include "image/draw/coverage.h"

namespace lmf {

namespace {

enum ShapeIndex : int32_t { kEllipse, kRectangle, kRoundedRectangle, kTriangle, kDiamond, kHexagon };

constexpr PageControl kPage[] = {
    Slider(860, "Size:", &P::FilterShapeMaskSize, {1, 100})
        .In(Unit::Percent)
        .Help("Size of the shape, of the picture's width and height."),
    Slider(861, "Horizontal:", &P::FilterShapeMaskHorz, {0, 100})
        .In(Unit::Percent)
        .Help("Place of the shape's middle across the picture."),
    Slider(862, "Vertical:", &P::FilterShapeMaskVert, {0, 100})
        .In(Unit::Percent)
        .Help("Place of the shape's middle from the top down."),
    Slider(863, "Opacity:", &P::FilterShapeMaskOpacity, {0, 255})
        .In(Unit::Levels)
        .Help("How much of the picture the paper covers outside the shape; 255 leaves nothing to see."),
    Slider(864, "Line size:", &P::FilterShapeMaskLineSize, {0, 32})
        .In(Unit::Pixels)
        .Help("Width of the line round the shape; 0 draws none."),
    Combo(865, "Shape:", &P::FilterShapeMaskShape, "Ellipse;Rectangle;Rounded rectangle;Triangle;Diamond;Hexagon")
        .Help("The outline that is cut out of the picture."),
    ColorButton(866, "Line", &P::FilterShapeMaskLineColor).Help("Color of the line round the shape."),
    CheckBox(867, "Alpha", &P::FilterShapeMaskAlpha)
        .Help("Keeps the picture and makes what lies outside the shape transparent."),
};

/// A shape with straight sides whose left half mirrors the right one. Half its width in a row is at most what each of
/// two slanting sides allows.
struct StraightShape {
    struct Side {
        double start, slope; ///< half the width at y = 0, and by how much it grows with y

        double At(int64_t y) const { return start + slope * (static_cast<double>(y) + 0.5); }
        Side Grown(int64_t margin) const {
            return {start + static_cast<double>(margin) * std::sqrt(1 + slope * slope), slope};
        }
    };

    DrawBox bounds;
    double middle;
    Side upper, lower;
    bool pointedTop, pointedBottom; ///< ends in a point there, not in a side along the row

    RowSpan SpanAt(int64_t y) const {
        const double half = std::min(upper.At(y), lower.At(y));
        if (!bounds.HasRow(y) || half <= 0) return {};
        return {static_cast<int64_t>(std::ceil(middle - half - 0.5)),
                static_cast<int64_t>(std::floor(middle + half + 0.5))};
    }
    /// The shape whose sides lie further out by `margin`.
    StraightShape Grown(int64_t margin) const {
        // A very sharp point would reach far, so it is cut off.
        const int64_t pointMargin = margin > 0 ? 4 * margin : margin;
        StraightShape grown = *this;
        grown.bounds = {bounds.left - 4 * std::abs(margin), bounds.top - (pointedTop ? pointMargin : margin),
                        bounds.right + 4 * std::abs(margin), bounds.bottom + (pointedBottom ? pointMargin : margin)};
        grown.upper = upper.Grown(margin);
        grown.lower = lower.Grown(margin);
        return grown;
    }
};

/// @param flatShare  half the width at a flat top, in parts of the half width of the box; 0 for a point
StraightShape StraightShapeIn(const DrawBox &box, double flatShare, bool widestAtBottom) {
    const double half = static_cast<double>(box.Width()) / 2, flat = half * flatShare;
    const double widest = static_cast<double>(box.Height()) / (widestAtBottom ? 1 : 2);
    const double slope = (half - flat) / std::max(widest, 1.0);
    const StraightShape::Side upper{flat - slope * static_cast<double>(box.top), slope};
    const StraightShape::Side lower{flat + slope * static_cast<double>(box.bottom), -slope};
    const bool pointed = flatShare == 0;
    return {box,     static_cast<double>(box.left + box.right) / 2,
            upper,   widestAtBottom ? upper : lower,
            pointed, pointed && !widestAtBottom};
}

using Area = std::variant<EllipseShape, RectangleShape, RoundRectShape, StraightShape>;
using Line = std::variant<OutlineShape<EllipseShape>, OutlineShape<RectangleShape>, OutlineShape<RoundRectShape>,
                          OutlineShape<StraightShape>>;

Area AreaOf(int32_t shape, const DrawBox &box) {
    const int64_t corner = std::min(box.Width(), box.Height()) / 3;
    switch (shape) {
    case kRectangle:
        return RectangleShape(box);
    case kRoundedRectangle:
        return RoundRectShape(box, corner, corner);
    case kTriangle:
        return StraightShapeIn(box, 0, true);
    case kDiamond:
        return StraightShapeIn(box, 0, false);
    case kHexagon:
        return StraightShapeIn(box, 0.5, false);
    default:
        return EllipseShape(box);
    }
}

/// Where the shape lies, in subpixels.
DrawBox BoxFor(const ReadView &picture, const FilterParameters &settings) {
    const int64_t width = picture.width * kSubpixels, height = picture.height * kSubpixels;
    const int64_t x = width * settings.FilterShapeMaskHorz / 100, y = height * settings.FilterShapeMaskVert / 100;
    const int64_t halfWidth = width * settings.FilterShapeMaskSize / 200;
    const int64_t halfHeight = height * settings.FilterShapeMaskSize / 200;
    return {x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight};
}

/// What the paper covers where the shape covers `inside`.
LMF_MULTIVERSION
void WeighOutside(uint8_t *__restrict outside, const uint8_t *__restrict inside, int32_t count, uint8_t opacity) {
    for (int32_t i = 0; i < count; i++)
        outside[i] = static_cast<uint8_t>(Div255(static_cast<uint16_t>((255 - inside[i]) * opacity)));
}

/// The shape over a picture, row by row.
class ShapeRows {
public:
    ShapeRows(const ReadView &picture, const FilterParameters &settings)
        : opacity(static_cast<uint8_t>(settings.FilterShapeMaskOpacity)),
          area(AreaOf(settings.FilterShapeMaskShape, BoxFor(picture, settings))),
          line(std::visit(
              [&](const auto &shape) {
                  return Line(Outline(shape, settings.FilterShapeMaskLineSize * static_cast<int32_t>(kSubpixels)));
              },
              area)),
          row(picture.width), outside(static_cast<uint64_t>(picture.width)) {}

    explicit operator bool() const { return row && outside; }

    /// How much of each pixel the paper covers.
    const uint8_t *DrawOutside(int32_t y, int32_t width) {
        std::visit([&](const auto &shape) { row.Draw(shape, y); }, area);
        std::memset(outside.data, opacity, static_cast<size_t>(width));
        WeighOutside(outside.data + row.Left(), row.Levels() + row.Left(), row.Right() - row.Left(), opacity);
        return outside.data;
    }
    /// How much of each pixel the line covers.
    const CoverageRow &DrawLine(int32_t y) {
        std::visit([&](const auto &shape) { row.Draw(shape, y); }, line);
        return row;
    }

private:
    uint8_t opacity;
    Area area;
    Line line;
    CoverageRow row;
    BlockArray<uint8_t> outside;
};

/// @return how much of each pixel is left; null without memory.
DibHandle CoverageOf(const ReadView &picture, ShapeRows &shape) {
    LockedDib coverage(DibCreateGrey(picture.width, picture.height));
    if (!coverage) return nullptr;
    for (int32_t y = 0; y < picture.height; y++) {
        const uint8_t *outside = shape.DrawOutside(y, picture.width);
        uint8_t *row = coverage.View().Row(y);
        for (int32_t x = 0; x < picture.width; x++) row[x] = static_cast<uint8_t>(255 - outside[x]);
    }
    return coverage.Release();
}

/// The picture on the paper, with the line; null without memory.
DibHandle CutOut(const ReadView &source, ShapeRows &shape, Color paper, Color lineColor) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const int32_t width = source.width;
    for (int32_t y = 0; y < source.height; y++) {
        uint8_t *row = pass.To().Row(y);
        std::memcpy(row, pass.From().Row(y), static_cast<size_t>(width) * 3);
        TintRow(row, shape.DrawOutside(y, width), width, paper);
        const CoverageRow &line = shape.DrawLine(y);
        TintRow(row + static_cast<ptrdiff_t>(line.Left()) * 3, line.Levels() + line.Left(), line.Right() - line.Left(),
                lineColor);
    }
    return pass.Finish();
}

DibHandle ShapeMaskKernel(const ReadView &source, FilterContext &context) {
    ShapeRows shape(source, context);
    if (!shape) return nullptr;
    if (context.FilterShapeMaskAlpha == 0)
        return CutOut(source, shape, context.paperColor, static_cast<Color>(context.FilterShapeMaskLineColor));
    LockedDib coverage(CoverageOf(source, shape));
    DibOwner result(DibClone(source));
    if (!coverage || !result) return nullptr;
    ReplaceSecond(context, AlphaFromCoverage(std::move(coverage), context.second));
    return result.Release();
}

} // namespace

extern constexpr Filter kShapeMask = MakeFilter<kPage>(ShapeMaskKernel);

} // namespace lmf
