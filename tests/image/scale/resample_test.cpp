#include "image/scale/resample.h"

#include "support/pictures.h"

namespace lmf::testing {
namespace {

/// What a pass makes of one output sample, pixel by pixel and tap by tap.
uint32_t ReferenceSample(const ReadView &from, bool vertical, int32_t position, int32_t line, double factor,
                         const ResampleWindow &window, double blur) {
    const int32_t size = vertical ? from.height : from.width;
    double scale = std::max(1.0 / factor, 1.0) * blur;
    double support = scale * window.support;
    if (!(support > 0.5)) {
        support = 0.500001;
        scale = 1.0;
    }
    const double centre = (position + 0.5) / factor;
    const auto start = static_cast<int32_t>(std::max(centre - support + 0.5, 0.0));
    const auto stop = static_cast<int32_t>(std::min(centre + support + 0.5, static_cast<double>(size)));
    std::vector<double> weights;
    double density = 0.0;
    for (int32_t i = start; i < stop; i++) {
        weights.push_back(window.weight((i - centre + 0.5) * (1.0 / scale), window.support));
        density += weights.back();
    }
    double sums[4] = {};
    for (int32_t i = start; i < stop; i++) {
        double weight = weights[static_cast<size_t>(i - start)];
        if (density != 0.0 && density != 1.0) weight *= 1.0 / density;
        const uint32_t pixel = vertical ? DibGetPixel(from, line, i) : DibGetPixel(from, i, line);
        for (uint32_t c = 0; c < 4; c++) sums[c] += weight * (pixel >> (8 * c) & 0xFF);
    }
    uint32_t value = 0;
    for (uint32_t c = 0; c < 4; c++)
        value |= static_cast<uint32_t>(std::min(std::max(sums[c], 0.0), 255.0) + 0.5) << (8 * c);
    return value;
}

LockedDib ReferencePass(const ReadView &source, bool vertical, int32_t newSize, double factor,
                        const ResampleWindow &window, double blur) {
    const LockedDib size(DibCreateLike(source, vertical ? source.width : newSize, vertical ? newSize : source.height));
    return PictureLike(size, [&](int32_t x, int32_t y) {
        return ReferenceSample(source, vertical, vertical ? y : x, vertical ? x : y, factor, window, blur);
    });
}

LockedDib ReferenceScale(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t index, double blur) {
    const int32_t width = source.width, height = source.height;
    const double xFactor = std::max(static_cast<double>(newWidth) / width, 0.0001);
    const double yFactor = std::max(static_cast<double>(newHeight) / height, 0.0001);
    if (index == 0) index = xFactor * yFactor > 1.0 ? 12 : 13;
    const ResampleWindow &window = kResampleWindows[index];
    const bool horizontalFirst = (height + newHeight) * newWidth > (width + newWidth) * newHeight;
    const auto pass = [&](const ReadView &from, bool vertical) {
        return ReferencePass(from, vertical, vertical ? newHeight : newWidth, vertical ? yFactor : xFactor, window,
                             blur);
    };
    return pass(pass(source, !horizontalFirst), horizontalFirst);
}

} // namespace

TEST(Resample, IsBitForBitThePlainRoad) {
    using Case = std::tuple<int32_t, int32_t, int32_t, int32_t, double>;
    // Both orders of the passes, strips and blocks with a rest, wide sums, one pixel, factors below the least one, and
    // sides that keep their size in either pass.
    static constexpr Case kCases[] = {{1, 1, 3, 5, 1.0},      {37, 29, 18, 14, 1.0},  {21, 150, 40, 33, 1.0},
                                      {150, 21, 33, 40, 1.0}, {300, 7, 11, 7, 1.0},   {19, 17, 19, 17, 1.7},
                                      {13, 90, 26, 45, 1.0},  {25, 70, 51, 139, 0.4}, {64, 3, 64, 1, 1.0},
                                      {90, 2, 7, 3, 9.0},     {31, 33, 62, 66, -1.0}, {1, 20003, 1, 1, 1.0},
                                      {70, 90, 30, 90, 1.0},  {30, 90, 70, 90, 1.0},  {21, 50, 21, 139, 1.0}};
    for (const auto &[width, height, newWidth, newHeight, blur] : kCases) {
        for (const uint32_t bits : {24u, 8u, 32u}) {
            const LockedDib source =
                bits == 8 ? RandomPicture(width, height, kModePalette, 4) : RandomDepth(width, height, bits, 3);
            for (int32_t window = 0; window < 16; window++) {
                const LockedDib fast(DibScale(source, newWidth, newHeight, window, blur));
                ASSERT_TRUE(SamePicture(fast, ReferenceScale(source, newWidth, newHeight, window, blur)))
                    << width << "x" << height << ", window " << window;
            }
        }
    }
}

TEST(Resample, LargeRowsReadInPlaceGiveWhatCopiedOnesGive) {
    constexpr int32_t kWidth = 40000, kHeight = 200, kNewWidth = 30, kNewHeight = 20;
    const LockedDib source = RandomPicture(kWidth, kHeight, kModeTrueColor, 6);
    const LockedDib reduced(DibScaleTo(source, kNewWidth, kNewHeight, 0));
    ASSERT_TRUE(reduced);
    EXPECT_TRUE(ScaleRows(
        {kWidth, kHeight, 24}, [&](int32_t y, uint8_t *row) { std::copy_n(source.View().Row(y), kWidth * 3, row); },
        kNewWidth, kNewHeight, 0,
        [&](int32_t y, const uint8_t *row) {
            EXPECT_TRUE(std::equal(row, row + kNewWidth * 3, reduced.View().Row(y))) << "row " << y;
        }));
}

TEST(Resample, WindowsHaveTheirShape) {
    struct Case {
        double support;
        std::vector<std::pair<double, double>> points;
    };
    // Of each window the middle, its border and what lies between its branches.
    const Case kCases[16] = {
        {0, {{0, 1}}},
        {0, {{0, 1}}},
        {0.5, {{-0.5, 1}, {0.499, 1}, {0.5, 0}, {-0.501, 0}}},
        {1, {{0, 1}, {-0.25, 0.75}, {0.999, 0.001}, {1, 0}, {-1.1, 0}}},
        {1, {{0, 1}, {0.25, 0.84375}, {-0.5, 0.5}, {1, 0}, {1.1, 0}}},
        {1, {{0, 1}, {0.25, 0.853553390593}, {-1, 0}}},
        {1, {{0, 1}, {-0.75, 0.214730880654}, {1, 0.08}}},
        {1, {{0, 1}, {0.3, 0.689171266596}, {0.5, 0.34}, {-1, 0}}},
        {1.25, {{0, 0.797884560803}, {0.5, 0.483941449038}, {-1, 0.107981933026}}},
        {1.5, {{0, 0.75}, {-0.25, 0.6875}, {0.5, 0.5}, {0.6, 0.405}, {1.25, 0.03125}, {-1.6, 0}}},
        {2, {{0, 0.666666666667}, {0.5, 0.479166666667}, {1.1, 0.1215}, {-1.5, 0.020833333333}, {2.1, 0}}},
        {2, {{0, 1}, {-0.5, 0.5625}, {1.1, -0.0405}, {1.5, -0.0625}, {-2.1, 0}}},
        {2, {{0, 0.888888888889}, {0.5, 0.534722222222}, {1.1, 0.0135}, {-1.5, -0.034722222222}, {2.1, 0}}},
        {3, {{0, 1}, {0.5, 0.607927101854}, {-1.5, -0.135094911523}, {2.5, 0.024317084074}, {3.1, 0}}},
        {3.238300085067749, {{0, 0.785398163397}, {0.5, 0.514413574838}, {-1.5, -0.037535197839}}},
        {4, {{0, 1}, {0.5, 0.597472945882}, {-1.5, -0.117726523850}, {3.25, -0.002415608820}}},
    };
    for (size_t window = 0; window < 16; window++) {
        EXPECT_EQ(kResampleWindows[window].support, kCases[window].support) << window;
        for (const auto &[x, weight] : kCases[window].points)
            EXPECT_NEAR(kResampleWindows[window].weight(x, kCases[window].support), weight, 1e-11)
                << window << ' ' << x;
    }
}

TEST(Resample, ChoosesWindowsAndCopies) {
    LockedDib source = RandomPicture(12, 10, kModeTrueColor, 8);
    const auto same = [&](int32_t width, int32_t height, int32_t a, int32_t b) {
        return SamePicture(LockedDib(DibScaleTo(source, width, height, a)),
                           LockedDib(DibScaleTo(source, width, height, b)));
    };
    EXPECT_TRUE(same(24, 5, 0, 13)) << "a product of exactly 1 is no gain";
    EXPECT_TRUE(same(25, 5, 0, 12));
    EXPECT_TRUE(same(30, 30, 1, 2)) << "Box enlarges as Point";
    EXPECT_FALSE(same(6, 5, 1, 2));
    EXPECT_TRUE(same(20, 20, -4, 0) && same(20, 20, 99, 15));
    EXPECT_TRUE(SamePicture(LockedDib(DibScaleTo(source, 12, 10, 8)), source));
}

TEST(Resample, OtherDepthsComeOutBlankAndSizesAreRounded) {
    LockedDib nibbles = MakePicture(4, 1, 4, {1, 2, 3, 4});
    EXPECT_EQ(PixelsOf(LockedDib(DibScaleTo(nibbles, 2, 2, 0))), Pixels(4, 0));
    LockedDib source = RandomPicture(9, 9, kModeTrueColor, 2);
    EXPECT_FALSE(DibScaleTo(source, 0, 5, 0) || DibScaleTo(source, 5, -1, 0));
    EXPECT_FALSE(DibScalePercent(source, 5, 100, 0) || DibScalePercent(source, INT32_MAX, 100, 0));
    for (const auto &[percentX, percentY, width, height] :
         {std::tuple{50, 100, 5, 9}, {49, 61, 4, 5}, {350, 106, 32, 10}}) {
        const LockedDib scaled(DibScalePercent(source, percentX, percentY, 0));
        EXPECT_TRUE(scaled.View().width == width && scaled.View().height == height) << percentX;
    }
}

TEST(Resample, FitAspectTakesTheTighterSide) {
    LockedDib source(DibCreateSolid(300, 200, 0));
    const auto fit = [&](int32_t width, int32_t depth) {
        DibFitAspect(source, &width, &depth);
        return std::pair{width, depth};
    };
    EXPECT_EQ(fit(100, 100), (std::pair{100, 67}));
    EXPECT_EQ(fit(900, 50), (std::pair{75, 50}));
}

} // namespace lmf::testing
