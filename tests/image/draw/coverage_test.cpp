#include "image/draw/coverage.h"

#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// Does the shape hold a subpixel?
template <typename Shape>
bool Holds(const Shape &shape, int64_t x, int64_t y) {
    bool inside = false;
    if (!shape.bounds.HasRow(y)) return false;
    ForEachSpan(shape, y, [&](const RowSpan &span) { inside |= x >= span.left && x < span.right; });
    return inside;
}

/// Counts the subpixels of every pixel.
template <typename Shape>
void ExpectCoverage(const Shape &shape, int32_t width, int32_t height) {
    CoverageRow row(width);
    ASSERT_TRUE(row);
    for (int32_t y = -1; y <= height; y++) {
        row.Draw(shape, y);
        ASSERT_TRUE(row.Left() >= 0 && row.Right() <= width);
        for (int32_t x = 0; x < width; x++) {
            int32_t parts = 0;
            for (int32_t i = 0; i < 256; i++) parts += Holds(shape, x * 16 + i % 16, y * 16 + i / 16);
            const bool touched = x >= row.Left() && x < row.Right();
            ASSERT_EQ(touched ? row.Levels()[x] : 0, (parts * 255 + 128) / 256) << x << ',' << y;
        }
    }
}

} // namespace

TEST(CoverageRow, CountsTheSubpixelsOfEveryPixel) {
    ExpectCoverage(EllipseShape({3, 5, 300, 190}), 20, 12);
    // Beyond every edge of the row, inside one pixel, on the borders of pixels, and without an area.
    ExpectCoverage(EllipseShape({-90, -40, 400, 200}), 20, 9);
    ExpectCoverage(RectangleShape({18, 20, 25, 22}), 4, 3);
    ExpectCoverage(RectangleShape({16, 16, 32, 48}), 4, 4);
    ExpectCoverage(RectangleShape({5, 5, 5, 50}), 4, 4);
    // Several spans in a row, also within a pixel.
    ExpectCoverage(Outline(EllipseShape({20, 20, 200, 150}), 9), 14, 11);
    ExpectCoverage(Outline(RectangleShape({3, 3, 14, 60}), 2), 3, 5);
    constexpr DrawPoint kStar[] = {{80, 0}, {130, 160}, {0, 60}, {160, 60}, {30, 160}};
    ExpectCoverage(PolygonShape(kStar, PolygonFill::kAlternate), 11, 11);
}

} // namespace lmf::testing
