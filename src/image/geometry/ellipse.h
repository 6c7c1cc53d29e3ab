// Warps that move pixels inside an ellipse about a centre and keep all others.
#pragma once

#include "image/core/byte_pass.h"
#include "image/geometry/mirror.h"
#include "image/geometry/warp_sample.h"

namespace lmf {

/// The pixels whose scaled distance from the centre is below the radius.
struct Ellipse {
    double cx, cy;         ///< centre, pixels
    double xScale, yScale; ///< what a pixel of distance counts
    double radius;         ///< in scaled pixels

    /// Distances of a column and of a row from the centre, in scaled pixels.
    double Dx(int32_t x) const { return (x - cx) * xScale; }
    double Dy(int32_t y) const { return (y - cy) * yScale; }
};

/// An ellipse with the proportions of the picture; the radius is along the picture's longer side.
inline Ellipse EllipseAbout(double cx, double cy, double radius, const ReadView &picture) {
    const double width = picture.width, height = picture.height;
    return {cx, cy, width < height ? height / width : 1.0, height < width ? width / height : 1.0, radius};
}

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

/// What becomes of the alpha of 32-bit pixels inside the ellipse.
enum class InsideAlpha : uint8_t { Stays, Cleared };

/// Fills the inside of the ellipse in a result that holds a copy of the source. measure(tables, begin, end, dy) sets
/// `first` and `second` from distances alone; place(tables, begin, end, dy) makes positions from them. Both work on
/// begin <= x < end.
/// @return false when memory is short.
template <typename Measure, typename Place>
bool WarpInside(const BytePass &pass, const Ellipse &ellipse, InsideAlpha alpha, Color background, Measure measure,
                Place place) {
    const int32_t width = pass.From().width, height = pass.From().height;
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
            WarpSampleRow(pass.To(), y, pass.From(), inside.left, inside.right, tables.xs, tables.ys, background);
            if (alpha == InsideAlpha::Stays || pass.Channels() < 4) return;
            uint8_t *row = pass.To().Row(y);
            for (ptrdiff_t x = inside.left; x < inside.right; x++) row[x * 4 + 3] = 0;
        });
    return true;
}

} // namespace lmf
