// Corners: round, smooth and alike at all four corners of a picture.
#include <cmath>
#include <numbers>
#include <set>

#include "engine/direct_run.h"

namespace lmf::testing {

namespace {

constexpr Color kPaper = 0x4060FF;

/// Of a white picture.
LockedDib Rounded(int32_t width, int32_t height, int32_t size, int32_t edge, int32_t density = 128) {
    FilterContext context =
        ContextWith({{&P::FilterCornerSize, size}, {&P::FilterCornerEdge, edge}, {&P::FilterCornerDense, density}});
    context.paperColor = kPaper;
    return RunKernel("Corners", LockedDib(DibCreateSolid(width, height, 0xFFFFFF)), context);
}

} // namespace

TEST(Corners, AllFourAreAlikeAtEverySize) {
    for (const auto &[width, height, size] :
         {std::tuple{64, 40, 16}, {65, 41, 512}, {40, 40, 512}, {7, 100, 30}, {1, 1, 9}, {1, 8, 3}}) {
        const LockedDib rounded = Rounded(width, height, size, 8, 255);
        ExpectPixels(rounded, [&, width = width, height = height](int32_t x, int32_t y) {
            return DibGetPixel(rounded, std::min(x, width - 1 - x), std::min(y, height - 1 - y));
        });
        // Nothing reaches beyond half of the smaller side.
        const int32_t reach = std::min({size, (width + 1) / 2, (height + 1) / 2});
        for (int32_t x = reach; x < width - reach; x++) EXPECT_EQ(DibGetPixel(rounded, x, 0), 0xFFFFFFu);
        for (int32_t y = reach; y < height - reach; y++) EXPECT_EQ(DibGetPixel(rounded, 0, y), 0xFFFFFFu);
    }
}

TEST(Corners, CutACircleWithASmoothEdge) {
    const FilterContext context = ContextWith({{&P::FilterCornerSize, 50}, {&P::FilterCornerAlpha, 1}});
    const LockedDib source = RandomPicture(140, 120, kModeTrueColor, 1);
    const DirectRun run(RowOf("Corners"), source, LockedDib(), context);
    ASSERT_TRUE(run.good && SamePicture(run.Result().view, source));
    const DibReadLock coverage = run.Second();
    std::set<uint32_t> levels;
    double missing = 0;
    ForEachPixel(coverage.view, [&](int32_t x, int32_t y) {
        const uint32_t level = DibGetPixel(coverage.view, x, y);
        levels.insert(level);
        missing += (255 - level) / 255.0;
        const double distance = std::hypot(std::max({49.5 - x, x - 89.5, 0.0}), std::max({49.5 - y, y - 69.5, 0.0}));
        EXPECT_GE(level, distance < 49 ? 255u : 0u) << x << ',' << y;
        EXPECT_LE(level, distance > 51 ? 0u : 255u) << x << ',' << y;
    });
    EXPECT_NEAR(missing, (4 - std::numbers::pi) * 50 * 50, 2);
    EXPECT_GE(levels.size(), 32u);

    // What the second picture lacks stays missing.
    const LockedDib alpha = RandomPicture(140, 120, kModeGrey, 2);
    const DirectRun both(RowOf("Corners"), source, alpha, context);
    const DibReadLock product = both.Second();
    ForEachPixel(alpha, [&](int32_t x, int32_t y) {
        ASSERT_EQ(DibGetPixel(product.view, x, y), DibGetPixel(alpha, x, y) * DibGetPixel(coverage.view, x, y) / 255);
    });
}

TEST(Corners, TheEdgeIsDarkAlongTheCornerAndFadesInwardsAndToTheSides) {
    const LockedDib plain = Rounded(200, 160, 60, 0), dark = Rounded(200, 160, 60, 20, 255);
    EXPECT_EQ(DibGetPixel(dark, 0, 0), kPaper);
    // Along the diagonal the arc lies at 60 - 60 / sqrt(2) = 17.6.
    EXPECT_EQ(DibGetPixel(plain, 19, 19), 0xFFFFFFu);
    uint32_t before = 0;
    for (int32_t i = 19; i < 40; i++) {
        const uint32_t level = GreenOf(DibGetPixel(dark, i, i));
        EXPECT_GE(level, before);
        EXPECT_LT(level - before, 30u) << "no step at " << i;
        before = level;
    }
    EXPECT_LT(GreenOf(DibGetPixel(dark, 19, 19)), 30);
    EXPECT_EQ(before, 255u);
    // Where the straight side begins there is no seam.
    for (int32_t y = 0; y < 20; y++) EXPECT_GE(GreenOf(DibGetPixel(dark, 59, y)), 253) << y;
}

TEST(Corners, PicturesInThirtyTwoBitsLoseTheirAlphaAlone) {
    const LockedDib rounded = RunKernel("Corners", MakePicture(9, 9, 32, Pixels(81, 0x80010203)),
                                        {{&P::FilterCornerSize, 3}, {&P::FilterCornerEdge, 0}});
    EXPECT_EQ(DibGetPixel(rounded, 4, 4), 0x010203u);
    EXPECT_EQ(ReadView(rounded).bits, 32u);
}

} // namespace lmf::testing
