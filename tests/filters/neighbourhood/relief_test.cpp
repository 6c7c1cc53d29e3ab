// Sharpening and relief: each fast path against a slow reading of the same rule, and worked examples.
#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "filters/neighbourhood/gaussian.h"
#include "support/pictures.h"

namespace lmf::testing {

using Pixels = std::vector<uint32_t>;
/// The value of one channel (shift 0, 8 or 16) of a result, from a way to read that channel with y from the top.
using ChannelRule = std::function<uint32_t(const std::function<int32_t(int32_t, int32_t)> &read, int32_t x, int32_t y,
                                           int32_t width, int32_t height)>;

/// Runs the rule on every channel of every pixel and compares with the filter.
static void ExpectRule(const std::string &filter, DibHandle picture, FilterContext *context, const ChannelRule &rule) {
    const DibOwner result = RunKernel(filter, picture, context);
    ASSERT_TRUE(result) << filter;
    DibLock from(picture), to(result.handle);
    const int32_t width = from.view.width, height = from.view.height;
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            uint32_t wanted = 0;
            for (int32_t shift = 0; shift < (from.view.bits == 8 ? 8 : 24); shift += 8) {
                const auto read = [&](int32_t column, int32_t row) {
                    return static_cast<int32_t>(DibGetPixel(from.image, column, row) >> shift & 255);
                };
                wanted |= rule(read, x, y, width, height) << shift;
            }
            ASSERT_EQ(DibGetPixel(to.image, x, y), wanted) << filter << " " << x << "," << y << " of " << width;
        }
    }
}

static uint32_t RoundAndLimit(double value) {
    return value < 0 ? 0 : value > 255 ? 255 : static_cast<uint32_t>(value + 0.5);
}

/// The square convolution with wrapped edges; `weight(u, v)` with v counted upward, as rows lie in memory.
static ChannelRule SquareRule(int32_t order, const std::function<double(int32_t, int32_t)> &weight) {
    return [=](const auto &read, int32_t x, int32_t y, int32_t width, int32_t height) {
        const int32_t half = order / 2;
        double sum = 0, weights = 0;
        for (int32_t v = -half; v <= half; v++)
            for (int32_t u = -half; u <= half; u++) weights += weight(u, v);
        for (int32_t v = -half; v <= half; v++) {
            for (int32_t u = -half; u <= half; u++)
                sum += weight(u, v) * read((x + u + width) % width, (y - v + height) % height);
        }
        return RoundAndLimit(weights != 0 && weights != 1 ? sum / weights : sum);
    };
}

TEST(Relief, SharpenAndEmbossConvolveATorus) {
    for (const auto &[size, depth] : {std::pair{4, 25}, {5, 15}, {15, 50}, {8, 33}}) {
        const int32_t order = size | 1;
        const double sigma = depth / 10.0;
        const auto bell = [=](int32_t u, int32_t v) { return std::exp(-(u * u + v * v) / (sigma * sigma)); };
        double total = 0;
        for (int32_t v = -order / 2; v <= order / 2; v++)
            for (int32_t u = -order / 2; u <= order / 2; u++) total += bell(u, v);
        for (const auto &[width, height] : {std::pair{order, order}, {31, 18}, {270, order + 1}}) {
            for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
                const DibOwner picture = RandomPicture(width, height, mode, static_cast<uint32_t>(width + depth));
                FilterContext context = MakeContext();
                context.FilterEmbossWidth = size;
                context.FilterEmbossSigma = depth;
                ExpectRule("Sharpen", picture.handle, &context, SquareRule(order, [&](int32_t u, int32_t v) {
                               return u == 0 && v == 0 ? -2.0 * total : bell(u, v);
                           }));
                ExpectRule("Emboss", picture.handle, &context, SquareRule(order, [&](int32_t u, int32_t v) {
                               return u == -v ? 0.0 : bell(u, v) * (u >= 0 && v >= 0 ? 8.0 : -8.0);
                           }));
            }
        }
    }
    const DibOwner small = RandomPicture(4, 9, kModeTrueColor, 1);
    EXPECT_FALSE(RunKernel("Sharpen", small.handle)) << "the square is larger than the picture";
}

TEST(Relief, SharpenAndUnsharpMaskReadTheOtherPages) {
    const DibOwner picture = RandomPicture(20, 20, kModeTrueColor, 4);
    for (const char *filter : {"Sharpen", "Unsharp Mask"}) {
        FilterContext own = MakeContext(), other = MakeContext();
        own.FilterSharpenWidth = 15;
        own.FilterSharpenSigma = own.FilterUnsharpSigma = 50;
        own.FilterUnsharpRadius = 200;
        other.FilterEmbossWidth = 9;
        other.FilterGaussianRadius = 90;
        const DibOwner plain = RunKernel(filter, picture.handle);
        EXPECT_TRUE(SamePicture(RunKernel(filter, picture.handle, &own).handle, plain.handle));
        EXPECT_FALSE(SamePicture(RunKernel(filter, picture.handle, &other).handle, plain.handle));
    }
}

TEST(Relief, UnsharpMaskDrivesValuesFromTheBlurredOnes) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        for (const auto &[amount, threshold] : {std::pair{4, 1}, {50, 3}, {0, 1}, {17, 15}}) {
            const DibOwner picture = RandomPicture(33, 17, mode, 8);
            FilterContext context = MakeContext(mode);
            context.FilterUnsharpAmount = amount;
            context.FilterUnsharpThreshold = threshold;
            const DibOwner blurred(GaussianBlurKernelRun(picture.handle, &context));
            const Pixels before = PixelsOf(picture.handle), soft = PixelsOf(blurred.handle);
            const Pixels after = PixelsOf(RunKernel("Unsharp Mask", picture.handle, &context).handle);
            for (size_t i = 0; i < before.size(); i++) {
                for (int32_t shift = 0; shift < (mode == kModeGrey ? 8 : 24); shift += 8) {
                    const double byte = before[i] >> shift & 255, d = byte - (soft[i] >> shift & 255);
                    const bool far = std::fabs(2 * d) >= threshold / 10.0 * 255.0;
                    ASSERT_EQ(after[i] >> shift & 255, RoundAndLimit(far ? byte + d * (amount / 10.0) : byte));
                }
            }
        }
    }
}

TEST(Relief, BumpRepeatsThePixelsOwnRowAndColumnAtTheEdges) {
    const ChannelRule rule = [](const auto &read, int32_t x, int32_t y, int32_t width, int32_t height) {
        static constexpr int32_t kWeights[3][3] = {{-1, -1, 0}, {-1, 1, 1}, {0, 1, 1}};
        int32_t sum = 0;
        for (int32_t j = 0; j < 3; j++) {
            for (int32_t i = 0; i < 3; i++) {
                const int32_t column = x + i - 1 < 0 || x + i - 1 >= width ? x : x + i - 1;
                const int32_t row = y + j - 1 < 0 || y + j - 1 >= height ? y : y + j - 1;
                sum += kWeights[j][i] * read(column, row);
            }
        }
        return static_cast<uint32_t>(std::clamp(sum, 0, 255));
    };
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        for (const auto &[width, height] : {std::pair{1, 1}, {1, 5}, {2, 2}, {3, 1}, {50, 20}}) {
            FilterContext context = MakeContext();
            const DibOwner picture = RandomPicture(width, height, mode, 6);
            ExpectRule("Bump", picture.handle, &context, rule);
        }
    }
    const DibOwner flat = MakePicture(6, 6, 24, Pixels(36, 0x204060));
    EXPECT_TRUE(SamePicture(RunKernel("Bump", flat.handle).handle, flat.handle));
}

TEST(Relief, EdgeEnhancementDividesByTheWeightsThatFallOnThePicture) {
    FilterContext context = MakeContext();
    const DibOwner picture = MakePicture(3, 3, 8, {10, 10, 10, 10, 50, 10, 10, 10, 10});
    // Light: (13 * 50 - 80) / 5 in the middle; (13 * 10 - 70) / 10 in a corner. Medium: 5 * 50 - 40.
    EXPECT_EQ(PixelsOf(RunKernel("Edge Enhancement", picture.handle, &context).handle),
              (Pixels{6, 5, 6, 5, 114, 5, 6, 5, 6}));
    context.FilterEdgeEnhanceLevel = 1;
    EXPECT_EQ(PixelsOf(RunKernel("Edge Enhancement", picture.handle, &context).handle),
              (Pixels{10, 0, 10, 0, 210, 0, 10, 0, 10}));
    context.FilterEdgeEnhanceLevel = 2;
    EXPECT_EQ(PixelsOf(RunKernel("Edge Enhancement", picture.handle, &context).handle)[4], 255u);
}

TEST(Relief, EdgeTraceGrowsTheZeros) {
    for (int32_t width : {1, 7, 8, 9, 37}) {
        for (bool fatten : {false, true}) {
            DibOwner picture = MakePicture(width, 9, 1, Pixels(static_cast<size_t>(width) * 9, 1));
            DibLock lock(picture.handle);
            for (int32_t i = 0; i < 6; i++) DibSetPixel(lock.image, i * 7 % width, i * 5 % 9, 0);
            FilterContext context = MakeContext();
            context.FilterEdgeTraceFatten = fatten;
            const DibOwner result = RunKernel("Edge Trace and Fatten", picture.handle, &context);
            DibLock traced(result.handle);
            for (int32_t y = 0; y < 9; y++) {
                for (int32_t x = 0; x < width; x++) {
                    bool near = false;
                    for (int32_t v = -1; v <= 1; v++)
                        for (int32_t u = -1; u <= 1; u++) near |= DibGetPixel(lock.image, x + u, y + v) == 0;
                    const bool zero = near && (fatten || DibGetPixel(lock.image, x, y) != 0);
                    ASSERT_EQ(DibGetPixel(traced.image, x, y), zero ? 0u : 1u) << x << "," << y << " of " << width;
                }
            }
        }
    }
    const DibOwner grey = RandomPicture(4, 4, kModeGrey, 1);
    EXPECT_FALSE(RunKernel("Edge Trace and Fatten", grey.handle));
}

/// Brightness of three bytes at a place in the pixel rows; bytes outside them count as 0.
static int32_t HeightAt(const DibView &view, int64_t place) {
    int32_t bytes[3];
    for (int32_t c = 0; c < 3; c++) {
        const bool inside = place + c >= 0 && place + c < view.stride * static_cast<int64_t>(view.height);
        bytes[c] = inside && place >= 0 ? view.bottom[place + c] : 0;
    }
    return (bytes[2] * 9798 + bytes[1] * 19235 + bytes[0] * 3735) >> 15;
}

TEST(Relief, ShadeLightsTheHeightsOfMemoryRows) {
    const double pi = 3.141592653589793;
    for (const auto &[width, height] : {std::pair{1, 3}, {2, 4}, {4, 3}, {5, 7}, {41, 13}}) {
        for (bool colored : {true, false}) {
            const DibOwner picture = RandomPicture(width, height, kModeTrueColor, static_cast<uint32_t>(width));
            FilterContext context = MakeContext();
            context.FilterShadeLevel = colored;
            context.FilterShadeAzimuth = 200 + width;
            context.FilterShadeElevation = 10 + width;
            const double a = context.FilterShadeAzimuth * pi / 180, e = context.FilterShadeElevation * pi / 180;
            const double lx = 255 * std::cos(a) * std::cos(e), ly = 255 * std::sin(a) * std::cos(e);
            const double lz = 255 * std::sin(e);
            const DibOwner result = RunKernel("Shade", picture.handle, &context);
            DibLock from(picture.handle), to(result.handle);
            for (int32_t y = 0; y < height; y++) {
                const int32_t a0 = std::min(std::max(y - 1, 0), height - 3);
                const auto heightOf = [&](int32_t row, int32_t x) {
                    return HeightAt(from.view, row * from.view.stride + x * 3);
                };
                for (int32_t x = 0; x < width; x++) {
                    const int32_t l = x > 0 ? x - 1 : x + 1, p = x > 0 ? x + 1 : x - 1;
                    const int32_t q = x < width - 1 ? x + 1 : x - 1;
                    int32_t nx = 0;
                    for (int32_t j = 0; j < 3; j++) nx += heightOf(a0 + j, l) - heightOf(a0 + j, p);
                    const int32_t ny = heightOf(a0 + 2, q) + heightOf(a0 + 2, x) + heightOf(a0 + 2, l) -
                                       heightOf(a0, q) - heightOf(a0, x) - heightOf(a0, l);
                    const double dist = ly * ny + lx * nx + lz * 510;
                    double shade = dist > 0 ? dist / std::sqrt(ny * ny + nx * nx + 260100.0) : 0;
                    if (nx == 0 && ny == 0) shade = lz;
                    for (int32_t c = 0; c < 3; c++) {
                        const int32_t byte = from.view.MemoryRow(a0 + 1)[x * 3 + c];
                        const auto lit = static_cast<int32_t>(static_cast<int32_t>(byte * shade) / 255.0);
                        ASSERT_EQ(to.view.MemoryRow(y)[x * 3 + c], colored ? lit : static_cast<int32_t>(shade));
                    }
                }
            }
        }
    }
    const DibOwner low = RandomPicture(9, 2, kModeTrueColor, 1);
    EXPECT_TRUE(SamePicture(RunKernel("Shade", low.handle).handle, low.handle));
}

TEST(Relief, ShadeOfAFlatPictureIsTheLightsHeight) {
    const DibOwner flat = MakePicture(8, 4, 24, Pixels(32, 0x808080));
    FilterContext context = MakeContext();
    context.FilterShadeLevel = 0;
    // 255 * sin(30 degrees) = 127.5. A width of 8 leaves no padding, but the corner column looks below the first row.
    EXPECT_EQ(PixelsOf(RunKernel("Shade", flat.handle, &context).handle)[10], 0x7F7F7Fu);
}

TEST(Relief, NeonDrawsTheGradient) {
    const ChannelRule rule = [](const auto &read, int32_t x, int32_t y, int32_t width, int32_t height) {
        int32_t a = 0, b = 0;
        for (int32_t j = -1; j <= 1; j++) {
            for (int32_t i = -1; i <= 1; i++) {
                const int32_t sample = read(std::clamp(x + i, 0, width - 1), std::clamp(y + j, 0, height - 1));
                a += j * sample;
                b += i * sample;
            }
        }
        return static_cast<uint32_t>(std::min(static_cast<int32_t>(std::sqrt(a * a + b * b) / 1.8), 255));
    };
    for (const auto &[width, height] : {std::pair{1, 1}, {1, 4}, {3, 2}, {40, 30}}) {
        FilterContext context = MakeContext();
        const DibOwner picture = RandomPicture(width, height, kModeTrueColor, 3);
        ExpectRule("Neon", picture.handle, &context, rule);
    }
    int32_t width = 0, height = 0;
    const DibOwner large = RandomPicture(1000, 8, kModeTrueColor, 3);
    ASSERT_TRUE(DibInfo(RunKernel("Neon", large.handle).handle, &width, &height, nullptr, nullptr));
    EXPECT_EQ(width, 1000);
    EXPECT_EQ(height, 8);
}

} // namespace lmf::testing
