// Shape mask: areas, edges and places of the shapes, and the line round them.
#include <numbers>
#include <set>

#include "engine/direct_run.h"

namespace lmf::testing {

namespace {

constexpr Color kPaper = 0x40FF80;

/// The coverage that Alpha leaves of a picture without a second one; a second one is multiplied with it.
LockedDib CoverageOf(int32_t width, int32_t height, const std::vector<Setting> &settings) {
    FilterContext context = ContextWith(settings);
    context.FilterShapeMaskAlpha = 1;
    const LockedDib source = RandomPicture(width, height, kModeTrueColor, 1);
    const LockedDib alpha = RandomPicture(width, height, kModeGrey, 2);
    const DirectRun run(RowOf("Shape mask"), source, LockedDib(), context),
        both(RowOf("Shape mask"), source, alpha, context);
    EXPECT_TRUE(run.good && SamePicture(run.Result().view, source));
    LockedDib coverage(DibClone(run.Second().view));
    ExpectPixels(LockedDib(DibClone(both.Second().view)),
                 [&](int32_t x, int32_t y) { return DibGetPixel(alpha, x, y) * DibGetPixel(coverage, x, y) / 255; });
    return coverage;
}

LockedDib Masked(const ReadView &source, const std::vector<Setting> &settings) {
    FilterContext context = ContextWith(settings);
    context.paperColor = kPaper;
    return RunKernel("Shape mask", source, context);
}

} // namespace

TEST(ShapeMask, ShapesHaveTheirAreasAndSmoothEdges) {
    constexpr double kBoxWidth = 211 * 0.6, kBoxHeight = 97 * 0.6, kBox = kBoxWidth * kBoxHeight;
    // The corners of a rounded rectangle have a third of the shorter side as their diameter.
    constexpr double kCut = (4 - std::numbers::pi) * kBoxHeight * kBoxHeight / 36;
    const double areas[] = {kBox * std::numbers::pi / 4, kBox, kBox - kCut, kBox / 2, kBox / 2, kBox * 0.75};
    for (int32_t shape = 0; shape < 6; shape++) {
        const LockedDib coverage =
            CoverageOf(211, 97, {{&P::FilterShapeMaskShape, shape}, {&P::FilterShapeMaskSize, 60}});
        std::set<uint32_t> levels;
        double area = 0;
        ForEachPixel(coverage, [&](int32_t x, int32_t y) {
            const uint32_t level = DibGetPixel(coverage, x, y);
            levels.insert(level);
            area += level / 255.0;
            ASSERT_EQ(level, DibGetPixel(coverage, 210 - x, y)) << shape << ": left and right are alike";
        });
        EXPECT_NEAR(area, areas[shape], kBox / 300) << shape;
        EXPECT_GE(levels.size(), shape == 1 ? 2u : 16u) << shape;
    }
}

TEST(ShapeMask, PlaceAndSizeArePercentOfThePicture) {
    struct Case {
        int32_t size, across, down, left, top, right, bottom;
    };
    // The last two are cut by the picture's edge.
    static constexpr Case kCases[] = {{50, 50, 50, 50, 25, 150, 75},
                                      {10, 30, 80, 50, 75, 70, 85},
                                      {100, 50, 50, 0, 0, 200, 100},
                                      {50, 0, 100, 0, 75, 50, 100},
                                      {20, 95, 5, 170, 0, 200, 15}};
    for (const Case &c : kCases) {
        const LockedDib coverage = CoverageOf(200, 100,
                                              {{&P::FilterShapeMaskShape, 1},
                                               {&P::FilterShapeMaskSize, c.size},
                                               {&P::FilterShapeMaskHorz, c.across},
                                               {&P::FilterShapeMaskVert, c.down}});
        ExpectPixels(coverage, [&](int32_t x, int32_t y) {
            return x >= c.left && x < c.right && y >= c.top && y < c.bottom ? 255u : 0u;
        });
    }
}

TEST(ShapeMask, TheRestTakesThePaperByItsOpacity) {
    const LockedDib source = RandomPicture(61, 43, kModeTrueColor, 3);
    for (int32_t opacity : {0, 100, 255}) {
        const std::vector<Setting> settings = {
            {&P::FilterShapeMaskOpacity, opacity}, {&P::FilterShapeMaskLineSize, 0}, {&P::FilterShapeMaskShape, 4}};
        const LockedDib coverage = CoverageOf(61, 43, settings);
        EXPECT_EQ(DibGetPixel(coverage, 0, 0), 255u - static_cast<uint32_t>(opacity));
        ExpectPixels(Masked(source, settings), [&](int32_t x, int32_t y) {
            return MixBytes(DibGetPixel(source, x, y), kPaper, 255 - DibGetPixel(coverage, x, y));
        });
    }
}

TEST(ShapeMask, ALineRunsAlongTheOutlineHalfInside) {
    const LockedDib source(DibCreateSolid(200, 161, 0xFFFFFF));
    for (int32_t shape = 0; shape < 6; shape++) {
        const LockedDib masked = Masked(source, {{&P::FilterShapeMaskShape, shape},
                                                 {&P::FilterShapeMaskSize, 60},
                                                 {&P::FilterShapeMaskLineSize, 8},
                                                 {&P::FilterShapeMaskLineColor, 0x0000FF}});
        // Across its lower edge, where all shapes but the diamond are level in the middle.
        for (int32_t y = 120; y < 140 && shape != 4; y++) {
            const Color expected = y < 125 ? 0xFFFFFF : y > 132 ? kPaper : 0x0000FF;
            if (y == 124 || y == 132) continue;
            EXPECT_EQ(DibGetPixel(masked, 100, y), expected) << shape << ' ' << y;
        }
        // Along the middle row the slanted lines are wider than the pen, and no line has a gap.
        int32_t line = 0;
        for (int32_t x = 0; x < 100; x++) {
            const Color pixel = DibGetPixel(masked, x, 80);
            line += pixel != 0xFFFFFF && pixel != kPaper ? 1 : 0;
        }
        EXPECT_TRUE(line >= 8 && line <= 16) << shape << ' ' << line;
    }
    // A line wider than the shape leaves nothing inside.
    const LockedDib small(DibCreateSolid(21, 21, 0xFFFFFF));
    ExpectPixels(Masked(small, {{&P::FilterShapeMaskSize, 50}, {&P::FilterShapeMaskLineSize, 32}}),
                 [](int32_t, int32_t) { return 0u; });
}

} // namespace lmf::testing
