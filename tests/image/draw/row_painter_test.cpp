#include "image/draw/row_painter.h"

#include <numeric>

#include "image/draw/gdi_canvas.h"
#include "image/scale/resample.h"
#include "image/scale/steps.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// Ellipses, each over the one before, some beside and some outside the drawing.
std::vector<EllipseShape> RandomEllipses(size_t count, int32_t side, uint32_t seed) {
    std::vector<EllipseShape> shapes;
    const auto coordinate = [&] {
        return static_cast<int64_t>(TestRandom(&seed) % static_cast<uint32_t>(side * 3 / 2)) - side / 4;
    };
    while (shapes.size() < count) {
        const int64_t left = coordinate(), top = coordinate();
        shapes.emplace_back(DrawBox{left, top, coordinate(), coordinate()});
    }
    return shapes;
}

/// Four times as large a drawing as a picture of this size: grey ellipses on white.
struct Drawing {
    int32_t width, height; ///< of the drawing
    std::vector<EllipseShape> shapes;
    RowGaps gaps;

    Drawing(int32_t pictureWidth, int32_t pictureHeight)
        : width(4 * pictureWidth), height(4 * pictureHeight), shapes(RandomEllipses(60, std::max(width, height), 7)),
          gaps(width) {}

    static Color ColorOf(int64_t i) { return PackColor(1, 1, 1) * static_cast<uint32_t>(i * 4); }
    void FillRow(int32_t y, uint8_t *row, uint32_t bits) {
        gaps.Reset(0, width);
        PaintLastFirst(gaps, y, shapes.data(), static_cast<int64_t>(shapes.size()),
                       [&](int32_t left, int32_t right, int64_t i) { FillPixels(row, bits, left, right, ColorOf(i)); });
        gaps.Take({0, width}, [&](int32_t left, int32_t right) { FillPixels(row, bits, left, right, 0xFFFFFF); });
    }
    /// The same, painted from the first to the last on a whole canvas.
    LockedDib Canvas() const {
        GdiCanvas canvas;
        EXPECT_EQ(GdiCanvasOpen(width, height, &canvas), 1);
        GdiCanvasPaint(canvas, RectangleShape(canvas.Bounds()), 0xFFFFFF);
        for (size_t i = 0; i < shapes.size(); i++) GdiCanvasPaint(canvas, shapes[i], ColorOf(static_cast<int64_t>(i)));
        GdiCanvasClose(&canvas, true);
        return LockedDib(canvas.picture.Release());
    }
};

} // namespace

TEST(FillPixels, SetsRunsAtEveryDepth) {
    for (uint32_t bits : {8u, 24u}) {
        for (const uint32_t value : {0x40302010u, 0x777777u}) {
            for (const auto &[left, right] : {std::pair{0, 45}, {3, 4}, {7, 40}, {9, 9}, {44, 45}}) {
                const LockedDib filled = RandomDepth(45, 1, bits, 3), expected(DibClone(filled));
                FillPixels(filled.View().Row(0), bits, left, right, value);
                for (int32_t x = left; x < right; x++) DibSetPixel(expected.View(), x, 0, value);
                ASSERT_TRUE(SamePicture(filled, expected)) << bits << " bits, " << left << " to " << right;
            }
        }
    }
}

TEST(RowGaps, GivesEachPixelOnce) {
    uint32_t random = 1;
    for (int round = 0; round < 400; round++) {
        const auto width = static_cast<int32_t>(TestRandom(&random) % 90 + 1);
        const auto first = static_cast<int32_t>(TestRandom(&random) % 3), last = width - round % 2;
        RowGaps gaps(width);
        ASSERT_TRUE(gaps);
        gaps.Reset(first, last);
        std::vector<int> taken(static_cast<size_t>(width));
        // Every other pixel first: as many gaps as there can be.
        for (int32_t i = 0; i <= width + 40; i++) {
            int64_t left = static_cast<int64_t>(TestRandom(&random) % 120) - 20,
                    right = left + TestRandom(&random) % 12;
            if (i < width) left = 2 * i + 1, right = left + 1;
            if (i == width + 40) left = INT64_MIN, right = INT64_MAX;
            int32_t previous = -1;
            gaps.Take({left, right}, [&](int32_t from, int32_t to) {
                ASSERT_TRUE(from >= left && from < to && to <= right && from > previous);
                previous = to;
                for (int32_t x = from; x < to; x++) ASSERT_EQ(taken[static_cast<size_t>(x)]++, 0);
            });
            for (int64_t x = std::max<int64_t>(left, first); x < std::min<int64_t>(right, last); x++)
                ASSERT_EQ(taken[static_cast<size_t>(x)], 1);
        }
        ASSERT_TRUE(gaps.IsEmpty());
        EXPECT_EQ(std::accumulate(taken.begin(), taken.end(), 0), std::max(last - first, 0));
    }
}

TEST(RowPainter, ReducedRowsAreTheReducedPicture) {
    struct Case {
        bool isStepped; ///< a and b are percent, else the new sides
        int32_t a, b, window = 0;
    };
    for (const auto &[width, height] : {std::pair{90, 70}, {31, 300}, {120, 31}, {1, 3}, {40, 1}}) {
        Drawing drawing(width, height);
        const LockedDib canvas = drawing.Canvas();
        const Case cases[] = {{false, width, height, kWindowAutomatic},
                              {false, 4 * width, 4 * height, 5},
                              {false, 5 * width, 2 * height, 9},
                              {false, width, 5 * height, 11},
                              {false, 3 * width, (height + 4) * 2 / 5, 13},
                              {false, 1, 1, 12},
                              {true, 25, 25},
                              {true, 50, 50},
                              {true, 100, 100},
                              {true, 33, 100},
                              {true, 100, 60}};
        for (const Case &c : cases) {
            SCOPED_TRACE(::testing::PrintToString(std::array{width, height, c.a, c.b}));
            const LockedDib reduced(c.isStepped ? DibScaleSteps(canvas, c.a, c.b)
                                                : DibScaleTo(canvas, c.a, c.b, c.window));
            ASSERT_TRUE(reduced);
            const ReadView expected = reduced;
            for (const int32_t bytes : {3, 1}) {
                int32_t filled = -1, taken = 0;
                const RowFormat from = {drawing.width, drawing.height, static_cast<uint32_t>(8 * bytes)};
                const auto fill = [&](int32_t y, uint8_t *row) {
                    ASSERT_GT(y, filled);
                    filled = y;
                    drawing.FillRow(y, row, from.bits);
                };
                const auto take = [&](int32_t y, const uint8_t *row) {
                    ASSERT_EQ(y, taken++);
                    for (int32_t x = 0; x < expected.width; x++)
                        ASSERT_EQ(row[x * bytes], expected.Row(y)[x * 3]) << x << ',' << y;
                };
                EXPECT_TRUE(c.isStepped ? ShrinkRows(from, fill, c.a, c.b, take)
                                        : ScaleRows(from, fill, c.a, c.b, c.window, take));
                EXPECT_TRUE(filled < drawing.height && taken == expected.height);
            }
        }
    }
}

TEST(RowPainter, ReducersRefuseWhatLeavesNothing) {
    const auto nothing = [](int32_t, uint8_t *) { FAIL(); };
    EXPECT_FALSE(ShrinkRows({3, 9, 8}, nothing, 25, 25, nothing));
    EXPECT_FALSE(ShrinkRows({9, 3, 8}, nothing, 25, 25, nothing));
    EXPECT_FALSE(ShrinkRows({9, 9, 8}, nothing, 25, 101, nothing));
    EXPECT_FALSE(ScaleRows({9, 9, 8}, nothing, 0, 2, 0, nothing));
    EXPECT_FALSE(ScaleRows({0, 9, 8}, nothing, 2, 2, 0, nothing));
}

TEST(RowPainter, ShortMemoryIsRefusedAndNothingLeaks) {
    const auto fill = [](int32_t, uint8_t *row) { row[0] = 1; };
    const auto take = [](int32_t, const uint8_t *) {};
    const auto scales = [&](const RowFormat &from, int32_t width, int32_t height) {
        return [=] { return ScaleRows(from, fill, width, height, 0, take); };
    };
    const std::function<bool()> works[] = {
        [&] {
            return ShrinkRows({40, 40, 8}, fill, 25, 25, take);
        },
        scales({40, 40, 24}, 10, 10),
        scales({40, 10, 24}, 10, 40),
        scales({40, 40, 24}, 40, 40),
        [] { return static_cast<bool>(RowGaps(10)); },
        [] {
            GdiCanvas canvas;
            return GdiCanvasOpen(5, 5, &canvas) != 0;
        },
    };
    for (const auto &work : works) {
        const int64_t blocks = LiveBlocks(), locks = LiveLocks();
        bool done = false;
        for (int64_t n = 0; !done; n++) {
            FailAllocationAfter(n);
            done = work();
            const bool refused = FailedAllocations() > 0;
            FailAllocationAfter(-1);
            ASSERT_NE(done, refused);
            ASSERT_TRUE(LiveBlocks() == blocks && LiveLocks() == locks);
        }
    }
}

TEST(GdiCanvas, PaintsInsideItsClip) {
    GdiCanvas canvas;
    for (const DrawPoint at : {DrawPoint{0, 0}, {11, 9}}) { // a window on a larger drawing
        ASSERT_EQ(GdiCanvasOpen(9, 7, &canvas, at), 1);
        const auto paint = [&](const DrawBox &clip, const DrawBox &box, Color color) {
            canvas.clip = {clip.left + at.x, clip.top + at.y, clip.right + at.x, clip.bottom + at.y};
            GdiCanvasPaint(canvas, RectangleShape(box), color);
        };
        const DrawBox all = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
        GdiCanvasPaint(canvas, RectangleShape(all), 0x111111);
        paint({2, 1, 5, 6}, all, 0x030201);
        paint({6, 2, 5, 6}, all, 0x222222); // empty
        paint({-3, -5, 100, 2}, {7 + at.x, at.y - 5, 50, 20}, 0x060504);
        GdiCanvasClose(&canvas, true);
        EXPECT_FALSE(canvas.lock);
        ExpectPixels(LockedDib(canvas.picture.Release()), [](int32_t x, int32_t y) -> Color {
            if (x >= 7 && y < 2) return 0x060504;
            return x >= 2 && x < 5 && y >= 1 && y < 6 ? 0x030201 : 0x111111;
        });
    }
    EXPECT_EQ(GdiCanvasOpen(0, 5, &canvas), 0);
    EXPECT_FALSE(canvas.picture);
}

} // namespace lmf::testing
