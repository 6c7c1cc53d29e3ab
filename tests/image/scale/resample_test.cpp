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
    const ReadView from = source;
    const LockedDib size(vertical ? DibCreateLike(from, from.width, newSize)
                                  : DibCreateLike(from, newSize, from.height));
    return PictureLike(size, [&](int32_t x, int32_t y) {
        return ReferenceSample(from, vertical, vertical ? y : x, vertical ? x : y, factor, window, blur);
    });
}

LockedDib ReferenceScale(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t index, double blur) {
    const int32_t width = source.width, height = source.height;
    const double xFactor = std::max(static_cast<double>(newWidth) / width, 0.0001);
    const double yFactor = std::max(static_cast<double>(newHeight) / height, 0.0001);
    if (index == 0) index = xFactor * yFactor > 1.0 ? 12 : 13;
    const ResampleWindow &window = kResampleWindows[index];
    const bool horizontalFirst = (height + newHeight) * newWidth > (width + newWidth) * newHeight;
    LockedDib between = ReferencePass(source, !horizontalFirst, horizontalFirst ? newWidth : newHeight,
                                      horizontalFirst ? xFactor : yFactor, window, blur);
    return ReferencePass(between, horizontalFirst, horizontalFirst ? newHeight : newWidth,
                         horizontalFirst ? yFactor : xFactor, window, blur);
}

} // namespace

TEST(Resample, IsBitForBitThePlainRoad) {
    struct Case {
        int32_t width, height, newWidth, newHeight;
        double blur;
    };
    // Both orders of the passes, strips and blocks with a rest, wide sums, one pixel, and factors below the least one.
    static constexpr Case kCases[] = {{1, 1, 3, 5, 1.0},      {37, 29, 18, 14, 1.0},  {21, 150, 40, 33, 1.0},
                                      {150, 21, 33, 40, 1.0}, {300, 7, 11, 7, 1.0},   {19, 17, 19, 17, 1.7},
                                      {13, 90, 26, 45, 1.0},  {25, 70, 51, 139, 0.4}, {64, 3, 64, 1, 1.0},
                                      {90, 2, 7, 3, 9.0},     {31, 33, 62, 66, -1.0}, {1, 20003, 1, 1, 1.0}};
    for (const Case &c : kCases) {
        LockedDib sources[] = {RandomPicture(c.width, c.height, kModeTrueColor, 3),
                               RandomPicture(c.width, c.height, kModePalette, 4),
                               RandomDepth(c.width, c.height, 32, 5)};
        for (const LockedDib &source : sources) {
            for (int32_t window = 0; window < 16; window++) {
                LockedDib fast(DibScale(source, c.newWidth, c.newHeight, window, c.blur));
                LockedDib plain = ReferenceScale(source, c.newWidth, c.newHeight, window, c.blur);
                ASSERT_TRUE(SamePicture(fast, plain)) << c.width << "x" << c.height << " to " << c.newWidth << "x"
                                                      << c.newHeight << ", window " << window;
            }
        }
    }
}

TEST(Resample, WindowsHaveTheirShape) {
    struct Point {
        double x, weight;
    };
    struct Case {
        double support;
        std::vector<Point> points;
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
        for (const Point &point : kCases[window].points)
            EXPECT_NEAR(kResampleWindows[window].weight(point.x, kCases[window].support), point.weight, 1e-11)
                << window << " at " << point.x;
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
    EXPECT_FALSE(SamePicture(LockedDib(DibScale(source, 12, 10, 8, 1.5)), source));
}

TEST(Resample, OtherDepthsComeOutBlankAndSizesAreRounded) {
    LockedDib nibbles = MakePicture(4, 1, 4, {1, 2, 3, 4});
    EXPECT_EQ(PixelsOf(LockedDib(DibScaleTo(nibbles, 2, 2, 0))), Pixels(4, 0));
    LockedDib source = RandomPicture(9, 9, kModeTrueColor, 2);
    EXPECT_EQ(DibScaleTo(source, 0, 5, 0), nullptr);
    EXPECT_EQ(DibScaleTo(source, 5, -1, 0), nullptr);
    EXPECT_EQ(DibScalePercent(source, 5, 100, 0), nullptr);
    EXPECT_EQ(DibScalePercent(source, INT32_MAX, 100, 0), nullptr);
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
