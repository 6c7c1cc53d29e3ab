#include "image/resample.h"

#include "support/pictures.h"

namespace lmf::testing {

/// What a pass makes of one output sample, pixel by pixel and tap by tap.
static uint32_t ReferenceSample(const DibLock &from, bool vertical, int32_t position, int32_t line, double factor,
                                const ResampleWindow &window, double blur) {
    const int32_t size = vertical ? from.view.height : from.view.width;
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
        const uint32_t pixel = vertical ? DibGetPixel(from.image, line, i) : DibGetPixel(from.image, i, line);
        for (uint32_t c = 0; c < 4; c++) sums[c] += weight * (pixel >> (8 * c) & 0xFF);
    }
    uint32_t value = 0;
    for (uint32_t c = 0; c < 4; c++)
        value |= static_cast<uint32_t>(std::min(std::max(sums[c], 0.0), 255.0) + 0.5) << (8 * c);
    return value;
}

static DibOwner ReferencePass(DibHandle source, bool vertical, int32_t newSize, double factor,
                              const ResampleWindow &window, double blur) {
    DibLock from(source);
    DibOwner size(vertical ? DibCreateLike(from, from.view.width, newSize)
                           : DibCreateLike(from, newSize, from.view.height));
    return PictureLike(size.handle, [&](int32_t x, int32_t y) {
        return ReferenceSample(from, vertical, vertical ? y : x, vertical ? x : y, factor, window, blur);
    });
}

static DibOwner ReferenceScale(DibHandle source, int32_t newWidth, int32_t newHeight, int32_t index, double blur) {
    int32_t width = 0, height = 0;
    DibInfo(source, &width, &height, nullptr, nullptr);
    const double xFactor = static_cast<double>(newWidth) / width, yFactor = static_cast<double>(newHeight) / height;
    if (index == 0) index = xFactor * yFactor > 1.0 ? 12 : 13;
    const ResampleWindow &window = kResampleWindows[index];
    const bool horizontalFirst = (height + newHeight) * newWidth > (width + newWidth) * newHeight;
    DibOwner between = ReferencePass(source, !horizontalFirst, horizontalFirst ? newWidth : newHeight,
                                     horizontalFirst ? xFactor : yFactor, window, blur);
    return ReferencePass(between.handle, horizontalFirst, horizontalFirst ? newHeight : newWidth,
                         horizontalFirst ? yFactor : xFactor, window, blur);
}

TEST(Resample, IsBitForBitThePlainRoad) {
    struct Case {
        int32_t width, height, newWidth, newHeight;
        double blur;
    };
    // Both orders of the passes, strips and blocks with a rest, wide sums, one pixel, and factors below the least one.
    static constexpr Case kCases[] = {{1, 1, 3, 5, 1.0},      {37, 29, 18, 14, 1.0},  {21, 150, 40, 33, 1.0},
                                      {150, 21, 33, 40, 1.0}, {300, 7, 11, 7, 1.0},   {19, 17, 19, 17, 1.7},
                                      {13, 90, 26, 45, 1.0},  {25, 70, 51, 139, 0.4}, {64, 3, 64, 1, 1.0},
                                      {90, 2, 7, 3, 9.0},     {31, 33, 62, 66, -1.0}};
    for (const Case &c : kCases) {
        DibOwner sources[] = {RandomPicture(c.width, c.height, kModeTrueColor, 3),
                              RandomPicture(c.width, c.height, kModePalette, 4), RandomDepth(c.width, c.height, 32, 5)};
        for (const DibOwner &source : sources) {
            for (int32_t window = 0; window < 16; window++) {
                DibOwner fast(DibScale(source.handle, c.newWidth, c.newHeight, window, c.blur));
                DibOwner plain = ReferenceScale(source.handle, c.newWidth, c.newHeight, window, c.blur);
                ASSERT_TRUE(SamePicture(fast, plain)) << c.width << "x" << c.height << " to " << c.newWidth << "x"
                                                      << c.newHeight << ", window " << window;
            }
        }
    }
}

TEST(Resample, LargeRowsReadInPlaceGiveWhatCopiedOnesGive) {
    constexpr int32_t kWidth = 40000, kHeight = 200, kNewWidth = 30, kNewHeight = 20;
    const DibOwner source = RandomPicture(kWidth, kHeight, kModeTrueColor, 6);
    const DibOwner reduced(DibScaleTo(source.handle, kNewWidth, kNewHeight, 0));
    DibLock from(source.handle), to(reduced.handle);
    ASSERT_TRUE(to);
    EXPECT_TRUE(ScaleRows(
        {kWidth, kHeight, 24}, [&](int32_t y, uint8_t *row) { std::copy_n(from.view.Row(y), kWidth * 3, row); },
        kNewWidth, kNewHeight, 0,
        [&](int32_t y, const uint8_t *row) {
            EXPECT_TRUE(std::equal(row, row + kNewWidth * 3, to.view.Row(y))) << "row " << y;
        }));
}

TEST(Resample, WindowsHaveTheirShape) {
    struct Case {
        int32_t window;
        double x, weight;
    };
    static constexpr Case kCases[] = {
        {2, -0.5, 1.0},         {2, 0.5, 0.0},        {3, 0.25, 0.75},      {3, -1.0, 0.0},
        {4, 0.5, 0.5},          {5, 1.0, 0.0},        {6, -1.0, 0.08},      {7, 0.5, 0.34},
        {8, 0.0, 0.7978845608}, {9, 0.5, 0.5},        {9, -1.0, 0.125},     {10, 0.0, 2.0 / 3.0},
        {10, 1.0, 1.0 / 6.0},   {11, 0.5, 0.5625},    {11, -1.5, -0.0625},  {12, 1.0, 1.0 / 18.0},
        {12, 0.0, 8.0 / 9.0},   {13, 0.5, 0.6079271}, {13, 3.0, 0.0},       {14, 0.0, 0.7853981634},
        {14, 1.0, 0.0958732},   {15, 0.0, 1.0},       {15, 0.5, 0.5974729},
    };
    for (const Case &c : kCases) {
        const ResampleWindow &window = kResampleWindows[c.window];
        EXPECT_NEAR(window.weight(c.x, window.support), c.weight, 5e-5) << c.window << " at " << c.x;
    }
    EXPECT_EQ(kResampleWindows[14].support, 3.238300085067749);
}

TEST(Resample, ChoosesWindowsAndCopies) {
    DibOwner source = RandomPicture(12, 10, kModeTrueColor, 8);
    const auto same = [&](int32_t width, int32_t height, int32_t a, int32_t b) {
        return SamePicture(DibOwner(DibScaleTo(source.handle, width, height, a)),
                           DibOwner(DibScaleTo(source.handle, width, height, b)));
    };
    EXPECT_TRUE(same(24, 5, 0, 13)) << "a product of exactly 1 is no gain";
    EXPECT_TRUE(same(25, 5, 0, 12));
    EXPECT_TRUE(same(30, 30, 1, 2)) << "Box enlarges as Point";
    EXPECT_FALSE(same(6, 5, 1, 2));
    EXPECT_TRUE(same(20, 20, -4, 0) && same(20, 20, 99, 15));
    EXPECT_TRUE(SamePicture(DibOwner(DibScaleTo(source.handle, 12, 10, 8)), source));
    EXPECT_FALSE(SamePicture(DibOwner(DibScale(source.handle, 12, 10, 8, 1.5)), source));
}

TEST(Resample, OtherDepthsComeOutBlankAndNoSizeFails) {
    DibOwner nibbles = MakePicture(4, 1, 4, {1, 2, 3, 4});
    EXPECT_EQ(PixelsOf(DibOwner(DibScaleTo(nibbles.handle, 2, 2, 0))), Pixels(4, 0));
    DibOwner source = RandomPicture(9, 9, kModeTrueColor, 2);
    EXPECT_EQ(DibScaleTo(source.handle, 0, 5, 0), nullptr);
    EXPECT_EQ(DibScaleTo(source.handle, 5, -1, 0), nullptr);
    EXPECT_EQ(DibScalePercent(source.handle, 5, 100, 0), nullptr);
    EXPECT_EQ(DibScalePercent(source.handle, INT32_MAX, 100, 0), nullptr);
    EXPECT_EQ(DibScalePercent(nullptr, 50, 50, 0), nullptr);
}

TEST(Resample, FitAspectTakesTheTighterSide) {
    DibOwner source(DibCreateSolid(300, 200, 0));
    const auto fit = [&](int32_t width, int32_t depth) {
        EXPECT_EQ(DibFitAspect(source.handle, &width, &depth), 1);
        return std::pair{width, depth};
    };
    EXPECT_EQ(fit(100, 100), (std::pair{100, 67}));
    EXPECT_EQ(fit(900, 50), (std::pair{75, 50}));
    int32_t width = 75, depth = 50;
    EXPECT_EQ(DibFitAspect(nullptr, &width, &depth), 0);
    EXPECT_EQ(width, 75);
}

} // namespace lmf::testing
