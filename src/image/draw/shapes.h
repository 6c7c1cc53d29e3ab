// Shapes as the spans of pixels that they cover in a row, in exact integer arithmetic, the same on every system.
//
// Coordinates are corners of pixels, y down: the centre of pixel (x, y) is (x + 1/2, y + 1/2). Any 32-bit coordinates
// and pen widths are fine. Boxes whose corners stand in the wrong order are turned round. A box without an area holds
// no pixel, but a pen that goes round it does.
//
// Every shape has `bounds`, outside which it holds no pixel, and ForEachSpan gives the spans of one row.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <span>

namespace lmf {

/// Pixels left <= x < right of a row.
struct RowSpan {
    int64_t left = 0;
    int64_t right = 0;

    bool IsEmpty() const { return left >= right; }
    bool operator==(const RowSpan &) const = default;
};

struct DrawPoint {
    int64_t x;
    int64_t y;
};

/// A box between corners of pixels.
struct DrawBox {
    int64_t left = 0;
    int64_t top = 0;
    int64_t right = 0;
    int64_t bottom = 0;

    int64_t Width() const { return right - left; }
    int64_t Height() const { return bottom - top; }
    bool HasRow(int64_t y) const { return y >= top && y < bottom; }
};

/// Whole numbers of 128 bits, which the square of every product of two coordinates that are near each other fits.
using WideInt = __int128;
using WideUint = unsigned __int128;

/// The pixels of a box.
struct RectangleShape {
    DrawBox bounds;

    explicit RectangleShape(const DrawBox &box);
    /// The pixels of a row.
    RowSpan SpanAt(int64_t y) const;
    /// The shape of a box that is larger by `margin` on each side; without pixels when nothing of it is left.
    RectangleShape Grown(int64_t margin) const;
};

/// The pixels whose centres lie inside or on the ellipse that touches the four sides of a box.
struct EllipseShape {
    DrawBox bounds;

    explicit EllipseShape(const DrawBox &box);
    /// A row inside the bounds without a pixel gives an empty span in its middle.
    RowSpan SpanAt(int64_t y) const;
    /// The shape of a box that is larger by `margin` on each side; without pixels when nothing of it is left.
    EllipseShape Grown(int64_t margin) const;

private:
    WideUint squaredWidth, squaredHeight;
    double widthToHeight;
};

/// A box whose corners are quarters of an ellipse.
struct RoundRectShape {
    DrawBox bounds;

    /// @param cornerWidth, cornerHeight the sides of the whole ellipse, limited to 0 .. the side of the box.
    RoundRectShape(const DrawBox &box, int64_t cornerWidth, int64_t cornerHeight);
    /// The pixels of a row.
    RowSpan SpanAt(int64_t y) const;
    /// The shape of a box that is larger by `margin` on each side, with corners larger by twice the margin, but not
    /// below 0; without pixels when nothing of it is left.
    RoundRectShape Grown(int64_t margin) const;

private:
    EllipseShape corner; ///< in the box of its own size at (0, 0)
    int64_t cornerWidth, cornerHeight;
};

/// What is inside a polygon that crosses itself.
enum class PolygonFill {
    kAlternate = 1, ///< where an odd number of edges lies to the right
    kWinding = 2    ///< where the edges to the right do not cancel each other out
};

/// The pixels whose centres lie inside a closed polygon. Centres on left and top edges belong to it, those on right
/// and bottom edges do not.
struct PolygonShape {
    static constexpr size_t kMostPoints = 32;

    DrawBox bounds;

    /// @param corners at most kMostPoints, the rest is ignored; the last one joins the first.
    PolygonShape(std::span<const DrawPoint> corners, PolygonFill rule);

    /// An edge to the right of the pixels x < `end` of a row.
    struct Crossing {
        int64_t end;
        int32_t direction; ///< 1 downwards, -1 upwards
    };
    using Crossings = std::array<Crossing, kMostPoints>;
    /// The edges that cross a row, from left to right. @return how many.
    size_t CrossingsAt(int64_t y, Crossings *crossings) const;
    /// Are pixels inside that have edges of this sum of directions on one side?
    bool IsInside(int32_t winding) const { return fill == PolygonFill::kAlternate ? (winding & 1) != 0 : winding != 0; }

private:
    PolygonFill fill;
    size_t count;
    std::array<DrawPoint, kMostPoints> points;
};

enum class LineEnds {
    kRound, ///< half a disc beyond each end
    kSquare ///< half the width beyond each end, cut at a right angle
};

/// A straight line between two points that are centres of pixels: pixel (x, y) is the point (x, y).
///
/// Up to a width of 1 it is the line of J. E. Bresenham, "Algorithm for computer control of a digital plotter" (1965),
/// which steps aside where the line passes midway between two pixels, without its last point. Above, it is the pixels
/// at most half the width away.
struct LineShape {
    DrawBox bounds;

    /// A line of square ends and no length counts as one that runs to the right.
    LineShape(DrawPoint start, DrawPoint end, int32_t pen, LineEnds shapeOfEnds);
    /// The pixels of a row.
    RowSpan SpanAt(int64_t y) const;

private:
    RowSpan ThinSpanAt(int64_t y) const;
    RowSpan BarSpanAt(int64_t y) const;
    RowSpan DiscSpanAt(DrawPoint centre, int64_t y) const;

    DrawPoint from, to;
    int64_t width;
    LineEnds ends;
    int64_t dx, dy;           ///< the line's direction
    WideInt squaredLength;    ///< of the line
    WideInt lengthTimesWidth; ///< of the direction; truncated
};

/// What one shape covers and another one inside it does not.
template <typename Shape>
struct OutlineShape {
    DrawBox bounds;
    Shape outer, inner;

    OutlineShape(const Shape &whole, const Shape &hole) : bounds(whole.bounds), outer(whole), inner(hole) {}
};

/// The outline that a pen of this width leaves round a shape, half of it outside; none for a width below 1.
template <typename Shape>
OutlineShape<Shape> Outline(const Shape &shape, int32_t width) {
    const int64_t pen = width > 0 ? width : 0;
    return {shape.Grown(pen / 2), shape.Grown(pen / 2 - pen)};
}

/// The outline that a pen of this width leaves along a shape's inside; none for a width below 1.
template <typename Shape>
OutlineShape<Shape> InsideFrame(const Shape &shape, int32_t width) {
    return {shape, shape.Grown(width > 0 ? -int64_t{width} : 0)};
}

/// A shape with at most one span in a row.
template <typename Shape>
concept SimpleShape = requires(const Shape &shape, int64_t y) {
    { shape.SpanAt(y) } -> std::same_as<RowSpan>;
};

/// Calls emit(RowSpan) for the spans of row y, from left to right; none is empty and none overlap.
template <SimpleShape Shape, typename Emit>
void ForEachSpan(const Shape &shape, int64_t y, Emit emit) {
    const RowSpan span = shape.SpanAt(y);
    if (!span.IsEmpty()) emit(span);
}

/// The same for an outline.
template <typename Shape, typename Emit>
void ForEachSpan(const OutlineShape<Shape> &outline, int64_t y, Emit emit) {
    const RowSpan outer = outline.outer.SpanAt(y), inner = outline.inner.SpanAt(y);
    if (outer.IsEmpty()) return;
    if (inner.IsEmpty()) return emit(outer);
    if (outer.left < inner.left) emit(RowSpan{outer.left, inner.left});
    if (inner.right < outer.right) emit(RowSpan{inner.right, outer.right});
}

/// The same for a polygon.
template <typename Emit>
void ForEachSpan(const PolygonShape &polygon, int64_t y, Emit emit) {
    PolygonShape::Crossings crossings;
    const size_t count = polygon.CrossingsAt(y, &crossings);
    int32_t winding = 0;
    for (size_t i = 0; i + 1 < count; i++) {
        winding += crossings[i].direction;
        const RowSpan span{crossings[i].end, crossings[i + 1].end};
        if (polygon.IsInside(winding) && !span.IsEmpty()) emit(span);
    }
}

} // namespace lmf
