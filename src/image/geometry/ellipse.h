// Warps that move pixels inside an ellipse about a centre and keep all others.
#pragma once

#include "image/core/pixel_pass.h"
#include "image/geometry/mirror.h"
#include "image/geometry/warp_sample.h"

namespace lmf {

/// The pixels whose scaled distance from the centre is below the radius.
struct Ellipse {
    double cx, cy;                 ///< centre, pixels
    double xScale = 1, yScale = 1; ///< what a pixel of distance counts
    double radius;                 ///< in scaled pixels

    /// Distances of a column and of a row from the centre, in scaled pixels.
    double Dx(int32_t x) const { return (x - cx) * xScale; }
    double Dy(int32_t y) const { return (y - cy) * yScale; }
};

/// Columns left <= x < right.
struct ColumnSpan {
    int32_t left = 0;
    int32_t right = 0;
};

/// The columns inside the ellipse in a row at the scaled distance dy, of a picture of this width.
inline ColumnSpan ColumnsInside(const Ellipse &ellipse, double dy, int32_t width) {
    const auto isOutside = [&](int32_t x) {
        return ellipse.Dx(x) * ellipse.Dx(x) + dy * dy >= ellipse.radius * ellipse.radius;
    };
    ColumnSpan span{0, width};
    while (span.left < span.right && isOutside(span.left)) span.left++;
    while (span.left < span.right && isOutside(span.right - 1)) span.right--;
    return span;
}

/// What a warp keeps for every column of a row.
struct WarpTables {
    double *first, *second; ///< of the filter's own; the same at all columns that are as far from the centre
    double *xs, *ys;        ///< where WarpSampleRow reads
};

/// Fills the inside of the ellipse. measure(tables, begin, end, dy) sets `first` and `second` from distances alone;
/// place(tables, begin, end, dy) makes positions from them. Both work on begin <= x < end.
/// @return false when memory is short.
template <typename Measure, typename Place>
bool WarpInside(const PixelPass &pass, const Ellipse &ellipse, Color background, Measure measure, Place place) {
    const int32_t width = pass.from.width, height = pass.from.height;
    BlockArray<double> memory(static_cast<uint64_t>(width) * 4);
    if (!memory) return false;
    const WarpTables tables{memory.data, memory.data + width, memory.data + width * int64_t{2},
                            memory.data + width * int64_t{3}};
    const MirrorAxis columns(width, ellipse.cx);
    ColumnSpan inside;
    ForEachMirroredRow(
        MirrorAxis(height, ellipse.cy),
        [&](int32_t y) {
            inside = ColumnsInside(ellipse, ellipse.Dy(y), width);
            FillMirrored(columns, inside.left, inside.right, {tables.first, tables.second},
                         [&](int32_t begin, int32_t end) { measure(tables, begin, end, ellipse.Dy(y)); });
        },
        [&](int32_t y) {
            place(tables, inside.left, inside.right, ellipse.Dy(y));
            WarpSampleRow(pass.to, y, pass.from, inside.left, inside.right, tables.xs, tables.ys, background);
        });
    return true;
}

} // namespace lmf
