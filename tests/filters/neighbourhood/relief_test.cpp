// Sharpening and relief: each fast path against a slow reading of the same rule.
#include <cmath>
#include <functional>

#include "image/blur/gaussian.h"
#include "image/scale/resample.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

constexpr auto RoundAndLimit = [](double value) {
    return value < 0 ? 0 : value > 255 ? 255 : static_cast<uint32_t>(value + 0.5);
};

/// The square convolution with wrapped edges of the page of Emboss; `weight(u, v, bell, total)` with v counted upward,
/// as rows lie in memory.
Definition OnTorus(std::function<double(int32_t, int32_t, double, double)> weight) {
    return [=](const ReadView &source, const FilterContext &context) {
        const int32_t order = context.FilterEmbossWidth | 1, half = order / 2;
        const int32_t width = source.width, height = source.height;
        if (width < order || height < order) return LockedDib();
        const double sigma = context.FilterEmbossSigma / 10.0;
        double total = 0, sumOfWeights = 0;
        std::vector<double> weights;
        for (int32_t i = 0; i < order * order; i++) {
            const int32_t u = i % order - half, v = i / order - half;
            weights.push_back(std::exp(-(u * u + v * v) / (sigma * sigma)));
            total += weights.back();
        }
        for (int32_t i = 0; i < order * order; i++) {
            double &value = weights[static_cast<size_t>(i)];
            sumOfWeights += value = weight(i % order - half, i / order - half, value, total);
        }
        return ByChannel([&](auto read, const FilterContext &, int32_t x, int32_t y) {
            double sum = 0;
            for (int32_t i = 0; i < order * order; i++)
                sum += weights[static_cast<size_t>(i)] *
                       read((x + i % order - half + width) % width, (y - i / order + half + height) % height);
            return RoundAndLimit(sumOfWeights != 0 && sumOfWeights != 1 ? sum / sumOfWeights : sum);
        })(source, context);
    };
}

/// Brightness at a column of a row in memory. Beside the row a 24-bit picture has the three bytes that lie there in its
/// pixel rows; everything else counts as 0.
int32_t HeightAt(const ReadView &view, int32_t memoryRow, int32_t column) {
    int32_t bytes[3] = {};
    if (view.bits == 24) {
        const int64_t place = memoryRow * view.stride + column * 3;
        for (int32_t c = 0; c < 3; c++)
            if (place >= 0 && place + c < view.stride * view.height) bytes[c] = view.bottom[place + c];
    } else if (column >= 0 && column < view.width) {
        for (int32_t c = 0; c < 3; c++) bytes[c] = view.MemoryRow(memoryRow)[column * 4 + c];
    }
    return (bytes[2] * 9798 + bytes[1] * 19235 + bytes[0] * 3735) >> 15;
}

/// Light on the heights of the rows as they lie in memory.
uint32_t Shaded(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t width = from.width, height = from.height;
    if (height < 3) return DibGetPixel(from, x, y);
    const double pi = 3.141592653589793;
    const double a = context.FilterShadeAzimuth * pi / 180, e = context.FilterShadeElevation * pi / 180;
    const double lx = 255 * std::cos(a) * std::cos(e), ly = 255 * std::sin(a) * std::cos(e), lz = 255 * std::sin(e);
    const int32_t first = std::min(std::max(height - 2 - y, 0), height - 3);
    const auto heightOf = [&](int32_t row, int32_t column) { return HeightAt(from, first + row, column); };
    const int32_t l = x > 0 ? x - 1 : x + 1, p = x > 0 ? x + 1 : x - 1, q = x < width - 1 ? x + 1 : x - 1;
    int32_t nx = 0;
    for (int32_t j = 0; j < 3; j++) nx += heightOf(j, l) - heightOf(j, p);
    int32_t ny = 0;
    for (int32_t column : {q, x, l}) ny += heightOf(2, column) - heightOf(0, column);
    const double dist = ly * ny + lx * nx + lz * 510;
    double shade = dist > 0 ? dist / std::sqrt(ny * ny + nx * nx + 260100.0) : 0;
    if (nx == 0 && ny == 0) shade = lz;
    uint32_t lit = 0;
    for (int32_t shift = 0; shift < 24; shift += 8) {
        const auto product = static_cast<int32_t>((DibGetPixel(from, x, height - 2 - first) >> shift & 255) * shade);
        lit |= static_cast<uint32_t>(context.FilterShadeLevel ? product / 255.0 : shade) << shift;
    }
    return lit;
}

} // namespace

TEST(Relief, SharpenAndEmbossConvolveATorus) {
    const Trials trials = {.kinds = {Kind::Color, Kind::Alpha, Kind::Grey},
                           .otherPage = "Emboss",
                           .sizes = {{4, 9}, {15, 15}, {31, 18}, {270, 16}},
                           .rounds = 4};
    ExpectDefinition("Sharpen", trials, OnTorus([](int32_t u, int32_t v, double bell, double total) {
                         return u == 0 && v == 0 ? -2.0 * total : bell;
                     }));
    ExpectDefinition("Emboss", trials, OnTorus([](int32_t u, int32_t v, double bell, double) {
                         return u == -v ? 0.0 : bell * (u >= 0 && v >= 0 ? 8.0 : -8.0);
                     }));
}

TEST(Relief, UnsharpMaskDrivesValuesFromTheBlurredOnes) {
    const Trials trials = {.kinds = {Kind::Color, Kind::Alpha, Kind::Grey}, .otherPage = "Gaussian Blur"};
    ExpectDefinition("Unsharp Mask", trials, [](const ReadView &source, const FilterContext &context) {
        const LockedDib blurred(
            GaussianBlurKernelRun(source, context.mode, context.FilterGaussianRadius, context.FilterGaussianSigma));
        const ReadView soft = blurred;
        return ByPixel([&](const ReadView &from, const FilterContext &, int32_t x, int32_t y) {
            uint32_t pixel = 0;
            for (int32_t shift = 0; shift < (from.bits == 8 ? 8 : 24); shift += 8) {
                const double byte = DibGetPixel(from, x, y) >> shift & 255;
                const double d = byte - (DibGetPixel(soft, x, y) >> shift & 255);
                const bool far = std::fabs(2 * d) >= context.FilterUnsharpThreshold / 10.0 * 255.0;
                pixel |= RoundAndLimit(far ? byte + d * (context.FilterUnsharpAmount / 10.0) : byte) << shift;
            }
            return pixel;
        })(source, context);
    });
}

TEST(Relief, BumpRepeatsThePixelsOwnRowAndColumnAtTheEdges) {
    const auto rule = [](auto read, const FilterContext &context, int32_t x, int32_t y) {
        static constexpr int32_t kWeights[] = {-1, -1, 0, -1, 1, 1, 0, 1, 1};
        int32_t sum = 0;
        for (int32_t i = 0; i < 9; i++) {
            const int32_t column = x + i % 3 - 1, row = y + i / 3 - 1;
            sum += kWeights[i] *
                   read(column < 0 || column >= context.width ? x : column, row < 0 || row >= context.height ? y : row);
        }
        return std::clamp(sum, 0, 255);
    };
    ExpectDefinition("Bump", {{Kind::Color, Kind::Alpha, Kind::Grey}}, ByChannel(rule));
}

TEST(Relief, EdgeEnhancementDividesByTheWeightsThatFallOnThePicture) {
    const LockedDib picture = MakePicture(3, 3, 8, {10, 10, 10, 10, 50, 10, 10, 10, 10});
    const auto enhanced = [&](int32_t level) {
        return PixelsOf(RunKernel("Edge Enhancement", picture, {{&P::FilterEdgeEnhanceLevel, level}}));
    };
    // Light: (13 * 50 - 80) / 5 in the middle; (13 * 10 - 70) / 10 in a corner. Medium: 5 * 50 - 40.
    EXPECT_EQ(enhanced(0), (Pixels{6, 5, 6, 5, 114, 5, 6, 5, 6}));
    EXPECT_EQ(enhanced(1), (Pixels{10, 0, 10, 0, 210, 0, 10, 0, 10}));
    EXPECT_EQ(enhanced(2)[4], 255u);
}

TEST(Relief, EdgeTraceGrowsTheZeros) {
    const auto rule = [](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
        bool near = false;
        for (int32_t i = 0; i < 9; i++) near |= DibGetPixel(from, x + i % 3 - 1, y + i / 3 - 1) == 0;
        return near && (context.FilterEdgeTraceFatten || DibGetPixel(from, x, y) != 0) ? 0u : 1u;
    };
    ExpectDefinition("Edge Trace and Fatten", {{Kind::Mono}}, ByPixel(rule));
    EXPECT_FALSE(RunKernel("Edge Trace and Fatten", RandomPicture(4, 4, kModeGrey, 1)));
}

TEST(Relief, ShadeLightsTheHeightsOfMemoryRows) {
    ExpectDefinition("Shade", {{Kind::Color, Kind::Alpha}}, ByPixel(Shaded));
}

TEST(Relief, NeonDrawsTheGradient) {
    const auto rule = [](auto read, const FilterContext &context, int32_t x, int32_t y) {
        int32_t a = 0, b = 0;
        for (int32_t i = 0; i < 9; i++) {
            const int32_t sample =
                read(std::clamp(x + i % 3 - 1, 0, context.width - 1), std::clamp(y + i / 3 - 1, 0, context.height - 1));
            a += (i / 3 - 1) * sample;
            b += (i % 3 - 1) * sample;
        }
        return std::min(static_cast<int32_t>(std::sqrt(a * a + b * b) / 1.8), 255);
    };
    ExpectDefinition("Neon", {{Kind::Color, Kind::Alpha}}, ByChannel(rule));
    // Above 500 pixels across it is drawn on a smaller copy, of 50000 / 501 = 99 percent and so on, and enlarged.
    const struct { int32_t width, height, percent; } kLarge[] = {{501, 9, 99}, {8, 700, 71}, {1000, 8, 50}};
    for (const auto &[width, height, percent] : kLarge) {
        const LockedDib large = RandomPicture(width, height, kModeTrueColor, 3);
        const LockedDib reduced(DibScalePercent(large, percent, percent, kWindowAutomatic));
        const LockedDib edges(RunKernel("Neon", reduced));
        const LockedDib expected(DibScale(edges, width, height, kWindowAutomatic, 1.0));
        EXPECT_TRUE(SamePicture(RunKernel("Neon", large), expected)) << width << 'x' << height;
    }
    ExpectDefinition("Neon", {.sizes = {{500, 3}}, .rounds = 1}, ByChannel(rule));
}

} // namespace lmf::testing
