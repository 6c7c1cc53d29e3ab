#include "image/draw/row_painter.h"

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

    Drawing(int32_t pictureWidth, int32_t pictureHeight, size_t count = 60)
        : width(4 * pictureWidth), height(4 * pictureHeight), shapes(RandomEllipses(count, std::max(width, height), 7)),
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
            const LockedDib picture = RandomDepth(45, 1, bits, 3);
            for (const auto &[left, right] : {std::pair{0, 45}, {3, 4}, {7, 40}, {9, 9}, {44, 45}, {2, 19}}) {
                const LockedDib filled(DibClone(picture)), expected(DibClone(picture));
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
        for (int32_t i = 0; i < width + 40; i++) {
            const auto left = i < width ? 2 * i + 1 : static_cast<int64_t>(TestRandom(&random) % 120) - 20;
            const int64_t right = i < width ? left + 1 : left + TestRandom(&random) % 12;
            int32_t previous = -1;
            gaps.Take({left, right}, [&](int32_t from, int32_t to) {
                ASSERT_TRUE(from >= left && from < to && to <= right && from > previous);
                previous = to;
                for (int32_t x = from; x < to; x++) ASSERT_EQ(taken[static_cast<size_t>(x)]++, 0);
            });
            for (int64_t x = std::max<int64_t>(left, first); x < std::min<int64_t>(right, last); x++)
                ASSERT_EQ(taken[static_cast<size_t>(x)], 1);
        }
        gaps.Take({INT64_MIN, INT64_MAX}, [&](int32_t from, int32_t to) {
            for (int32_t x = from; x < to; x++) ASSERT_EQ(taken[static_cast<size_t>(x)]++, 0);
        });
        EXPECT_TRUE(gaps.IsEmpty());
        for (int32_t x = 0; x < width; x++) ASSERT_EQ(taken[static_cast<size_t>(x)], x >= first && x < last ? 1 : 0);
    }
}

TEST(RowPainter, LastFirstIsPaintingInOrder) {
    for (const size_t count : {size_t{1}, size_t{4}, size_t{60}}) {
        Drawing drawing(23, 17, count);
        const LockedDib rows(DibCreate(drawing.width, drawing.height, nullptr, 24));
        for (int32_t y = 0; y < drawing.height; y++) drawing.FillRow(y, rows.View().Row(y), 24);
        EXPECT_TRUE(SamePicture(rows, drawing.Canvas())) << count << " shapes";
    }
}

TEST(RowPainter, ReducedRowsAreTheReducedPicture) {
    using Reduce = std::function<DibHandle(const ReadView &)>;
    using ReduceRows = std::function<bool(const RowFormat &, RowCall, RowCall)>;
    struct Case {
        const char *name;
        Reduce reduce;
        ReduceRows reduceRows;
    };
    const auto scaled = [](int32_t width, int32_t height, int32_t window) {
        return Case{"scaled", [=](const ReadView &picture) { return DibScaleTo(picture, width, height, window); },
                    [=](const RowFormat &from, RowCall fill, RowCall take) {
                        return ScaleRows(from, fill, width, height, window, take);
                    }};
    };
    const auto stepped = [](int32_t percentX, int32_t percentY) {
        return Case{"stepped", [=](const ReadView &picture) { return DibScaleSteps(picture, percentX, percentY); },
                    [=](const RowFormat &from, RowCall fill, RowCall take) {
                        return ShrinkRows(from, fill, percentX, percentY, take);
                    }};
    };
    for (const auto &[width, height] : {std::pair{90, 70}, {31, 300}, {120, 31}, {1, 3}, {40, 1}}) {
        Drawing drawing(width, height);
        const LockedDib canvas = drawing.Canvas();
        const Case cases[] = {scaled(width, height, kWindowAutomatic),
                              scaled(4 * width, 4 * height, 5),
                              scaled(5 * width, 2 * height, 9),
                              scaled(width, 5 * height, 11),
                              scaled(3 * width, (height + 4) * 2 / 5, 13),
                              scaled(1, 1, 12),
                              stepped(25, 25),
                              stepped(50, 50),
                              stepped(100, 100),
                              stepped(33, 100),
                              stepped(100, 60)};
        for (const Case &c : cases) {
            for (const uint32_t bits : {24u, 8u}) {
                const LockedDib reduced(c.reduce(canvas));
                ASSERT_TRUE(reduced);
                const ReadView expected = reduced;
                int32_t filled = -1, taken = 0;
                const bool done = c.reduceRows(
                    {drawing.width, drawing.height, bits},
                    [&](int32_t y, uint8_t *row) {
                        ASSERT_GT(y, filled);
                        filled = y;
                        drawing.FillRow(y, row, bits);
                    },
                    [&](int32_t y, const uint8_t *row) {
                        ASSERT_EQ(y, taken++);
                        const uint8_t *pixels = expected.Row(y);
                        for (int32_t x = 0; x < expected.width; x++)
                            ASSERT_EQ(row[x * static_cast<int32_t>(bits / 8)], pixels[x * 3])
                                << c.name << ' ' << x << ',' << y;
                    });
                EXPECT_TRUE(done && filled < drawing.height && taken == expected.height) << c.name;
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
    const std::function<bool()> works[] = {
        [&] {
            return ShrinkRows({40, 40, 8}, fill, 25, 25, take);
        },
        [&] {
            return ScaleRows({40, 40, 24}, fill, 10, 10, 0, take);
        },
        [&] {
            return ScaleRows({40, 10, 24}, fill, 10, 40, 0, take);
        },
        [&] {
            return ScaleRows({40, 40, 24}, fill, 40, 40, 0, take);
        },
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
    ASSERT_EQ(GdiCanvasOpen(9, 7, &canvas), 1);
    const auto paint = [&](const DrawBox &clip, Color color) {
        canvas.clip = clip;
        GdiCanvasPaint(canvas, RectangleShape({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}), color);
    };
    paint(canvas.clip, 0x111111);
    paint({2, 1, 5, 6}, 0x030201);
    paint({6, 2, 5, 6}, 0x222222);
    paint({4, 6, 6, 6}, 0x333333);
    paint({7, -5, 100, 2}, 0x060504);
    GdiCanvasClose(&canvas, true);
    ExpectPixels(LockedDib(canvas.picture.Release()), [](int32_t x, int32_t y) -> Color {
        if (x >= 7 && y < 2) return 0x060504;
        return x >= 2 && x < 5 && y >= 1 && y < 6 ? 0x030201 : 0x111111;
    });
    EXPECT_EQ(GdiCanvasOpen(0, 5, &canvas), 0);
    EXPECT_FALSE(canvas.picture);
}

TEST(GdiCanvas, IsAWindowOnALargerDrawing) {
    const auto draw = [](int32_t width, int32_t height, DrawPoint origin) {
        GdiCanvas canvas;
        EXPECT_EQ(GdiCanvasOpen(width, height, &canvas, origin), 1);
        GdiCanvasPaint(canvas, EllipseShape({3, 2, 38, 27}), 0x808080);
        GdiCanvasPaint(canvas, Outline(EllipseShape({3, 2, 38, 27}), 5), 0x010203);
        canvas.clip = {10, 10, 30, 20};
        GdiCanvasPaint(canvas, LineShape({0, 0}, {40, 30}, 6, LineEnds::kSquare), 0x90A0B0);
        GdiCanvasClose(&canvas, true);
        EXPECT_FALSE(canvas.lock);
        return LockedDib(canvas.picture.Release());
    };
    const Pixels whole = PixelsOf(draw(40, 30, {0, 0}));
    ExpectPixels(draw(17, 13, {11, 9}),
                 [&](int32_t x, int32_t y) { return whole[static_cast<size_t>((y + 9) * 40 + x + 11)]; });
}

} // namespace lmf::testing
