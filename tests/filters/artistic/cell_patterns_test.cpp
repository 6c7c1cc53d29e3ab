// Hexagon, Raster and Light Box: what their patterns promise, measured.
#include <cmath>
#include <map>
#include <numbers>

#include "engine/direct_run.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

LockedDib Uniform(int32_t width, int32_t height, Color color) {
    return LockedDib(DibCreateSolid(width, height, color));
}

/// The mean of a channel, 0 red, 1 green, 2 blue.
double MeanOf(const ReadView &picture, int32_t channel) {
    double sum = 0;
    ForEachPixel(picture, [&](int32_t x, int32_t y) { sum += DibGetPixel(picture, x, y) >> (8 * channel) & 255; });
    return sum / picture.width / picture.height;
}

/// A sample of a honeycomb of unit-wide tiles: its tile's number and how far it is from the tile's nearest edge.
struct CombSample {
    int32_t column, row;
    double fromEdge;
};

CombSample SampleComb(double x, double y) {
    const double rowDistance = std::numbers::sqrt3 / 2;
    CombSample nearest{};
    double nearestDistance = 1e9, dx = 0, dy = 0;
    const auto middle = static_cast<int32_t>(y / rowDistance);
    for (int32_t row = middle - 1; row <= middle + 2; row++) {
        for (int32_t column = static_cast<int32_t>(x) - 2; column <= x + 2; column++) {
            const double cx = column + (row & 1) / 2.0, cy = row * rowDistance;
            const double distance = std::hypot(x - cx, y - cy);
            if (distance >= nearestDistance) continue;
            nearestDistance = distance;
            nearest = {column, row, 0};
            dx = std::abs(x - cx);
            dy = std::abs(y - cy);
        }
    }
    nearest.fromEdge = 0.5 - std::max(dx, dx / 2 + dy * rowDistance);
    return nearest;
}

/// Hexagon by the nearest centre of each sample, in floating arithmetic.
Pixels HexagonDefinition(const ReadView &source, int32_t size, double line, Color paper) {
    const auto sampleAt = [&](int32_t x, int32_t y, int32_t i) {
        return SampleComb((x + (i % 4 + 0.5) / 4) / size, (y + (i / 4 + 0.5) / 4) / size);
    };
    struct Sums {
        double channels[3] = {}, count = 0;
    };
    std::map<std::pair<int32_t, int32_t>, Sums> tiles;
    ForEachPixel(source, [&](int32_t x, int32_t y) {
        for (int32_t i = 0; i < 16; i++) {
            const CombSample sample = sampleAt(x, y, i);
            Sums &sums = tiles[{sample.column, sample.row}];
            for (int32_t c = 0; c < 3; c++) sums.channels[c] += DibGetPixel(source, x, y) >> (8 * c) & 255;
            sums.count++;
        }
    });
    Pixels result;
    ForEachPixel(source, [&](int32_t x, int32_t y) {
        double mixed[3] = {};
        for (int32_t i = 0; i < 16; i++) {
            const CombSample sample = sampleAt(x, y, i);
            const Sums &sums = tiles[{sample.column, sample.row}];
            for (int32_t c = 0; c < 3; c++)
                mixed[c] += sample.fromEdge * size < line / 2 ? paper >> (8 * c) & 255 : sums.channels[c] / sums.count;
        }
        const auto rounded = [&](int32_t c) { return static_cast<uint32_t>(std::lround(mixed[c] / 16)); };
        result.push_back(PackColor(rounded(0), rounded(1), rounded(2)));
    });
    return result;
}

} // namespace

TEST(Hexagon, IsARegularHoneycombOfMeansWithJointsInThePaperColor) {
    struct Case {
        int32_t size, line, isOn, width, height;
    };
    for (const Case &c : {Case{8, 1, 0, 60, 50},
                          {16, 1, 1, 90, 70},
                          {17, 3, 1, 64, 99},
                          {33, 2, 0, 100, 41},
                          {100, 25, 1, 130, 260},
                          {9, 25, 1, 30, 30},
                          {8, 1, 1, 2, 7}}) {
        const LockedDib source = RandomPicture(c.width, c.height, kModeTrueColor, 5);
        FilterContext context = ContextWith({{&P::FilterHexagonSize, c.size},
                                             {&P::FilterHexagonLineSize, c.line},
                                             {&P::FilterHexagonLineEnable, c.isOn}});
        context.paperColor = 0x20E0F0;
        const LockedDib result = RunKernel("Hexagon", source, context);
        ASSERT_TRUE(result);
        const double line = c.isOn != 0 ? std::min(c.line, c.size / 2) : 0;
        const Pixels expected = HexagonDefinition(source, c.size, line, context.paperColor), got = PixelsOf(result);
        int64_t apart = 0;
        for (size_t i = 0; i < got.size(); i++) {
            int32_t worst = 0;
            for (int32_t shift = 0; shift < 24; shift += 8)
                worst = std::max(worst, std::abs(static_cast<int32_t>(got[i] >> shift & 255) -
                                                 static_cast<int32_t>(expected[i] >> shift & 255)));
            // A sample right on an edge may fall to either side.
            EXPECT_LE(worst, 32);
            apart += worst > 1;
        }
        EXPECT_LE(apart, static_cast<int64_t>(got.size()) / 50) << c.size << ',' << c.line;
    }
}

TEST(Raster, DensityIsTheDarknessOfBlackAtEveryAngle) {
    for (int32_t angle : {0, 30, 45, 90, 137, 180, 270, 359}) {
        for (int32_t density : {1, 100, 160, 255}) {
            const LockedDib result = RunKernel(
                "Raster", Uniform(160, 160, 0),
                {{&P::FilterRasterDensity, density}, {&P::FilterRasterSize, 5}, {&P::FilterRasterAngle, angle}});
            EXPECT_NEAR(MeanOf(result, 0), 255 - density, 1.5) << angle << ',' << density;
        }
    }
}

TEST(Raster, DarkerAreasHaveWiderLinesOfTheirOwnColor) {
    double last = 0;
    for (int32_t tone = 240; tone >= 0; tone -= 24) {
        const auto grey = static_cast<uint32_t>(tone);
        const LockedDib result = RunKernel("Raster", Uniform(80, 80, PackColor(grey, grey, grey)),
                                           {{&P::FilterRasterSize, 13}, {&P::FilterRasterAngle, 20}});
        const double covered = (255 - MeanOf(result, 0)) / (255 - tone);
        EXPECT_GT(covered, last) << tone;
        last = covered;
    }
    const LockedDib red = RunKernel("Raster", Uniform(40, 40, 0x2040A0), {{&P::FilterRasterSize, 13}});
    EXPECT_EQ(DibGetPixel(red, 20, 0), 0x2040A0u);
    EXPECT_EQ(DibGetPixel(red, 20, 8), 0xFFFFFFu);
    EXPECT_EQ(PixelsOf(RunKernel("Raster", Uniform(9, 9, 0xFFFFFF))), Pixels(81, 0xFFFFFF));
}

TEST(Raster, LinesRunAtTheAngleWithSmoothEdges) {
    const LockedDib black = Uniform(64, 64, 0);
    const auto run = [&](int32_t angle) {
        return RunKernel("Raster", black, {{&P::FilterRasterSize, 13}, {&P::FilterRasterAngle, angle}});
    };
    const LockedDib across = run(0), upright = run(90), rising = run(45);
    ExpectPixels(across, [&](int32_t, int32_t y) { return DibGetPixel(across, 0, y % 16); });
    ExpectPixels(upright, [&](int32_t x, int32_t) { return DibGetPixel(upright, x % 16, 0); });
    int32_t between = 0;
    for (int32_t y = 1; y < 64; y++) {
        for (int32_t x = 0; x < 63; x++) {
            const auto tone = static_cast<int32_t>(DibGetPixel(rising, x, y) & 255);
            EXPECT_NEAR(tone, DibGetPixel(rising, x + 1, y - 1) & 255, 2); // counter-clockwise
            // An edge takes more than one step.
            EXPECT_LT(std::abs(tone - static_cast<int32_t>(DibGetPixel(rising, x + 1, y) & 255)), 200);
            between += tone > 20 && tone < 235;
        }
    }
    EXPECT_GT(between, 200);
}

TEST(LightBox, LampsShareTheCellAndTheirLightFollowsTheChannel) {
    for (int32_t screen = 0; screen < 5; screen++) {
        for (int32_t size : {4, 7, 24, 64}) {
            for (int32_t channel = 0; channel < 3; channel++) {
                double last = -1;
                for (int32_t level = 0; level <= 255; level += 51) {
                    const LockedDib result =
                        RunKernel("Light Box", Uniform(size, size, static_cast<uint32_t>(level) << 8 * channel),
                                  {{&P::FilterLightboxSize, size}, {&P::FilterLightboxScreen, screen}});
                    EXPECT_EQ(MeanOf(result, (channel + 1) % 3) + MeanOf(result, (channel + 2) % 3), 0);
                    const double light = MeanOf(result, channel);
                    EXPECT_NEAR(light, level * 7 / 24.0, 1.0) << screen << ',' << size << ',' << level;
                    EXPECT_GT(light, last);
                    last = light;
                    // No lamp leaves its third of the cell.
                    ForEachPixel(result, [&](int32_t x, int32_t y) {
                        const bool isInThird = 3 * x + 3 > channel * size && 3 * x < (channel + 1) * size;
                        ASSERT_TRUE(isInThird || DibGetPixel(result, x, y) == 0);
                    });
                }
            }
        }
    }
}

TEST(LightBox, TakesTheMeanOfEachCellAndDropsTheSecondPicture) {
    // Black and white in equal parts shine as 127 does, also in a cell that the edge cuts.
    const LockedDib stripes = PictureLike(Uniform(12, 8, 0), [](int32_t x, int32_t) { return x % 2 ? 0xFFFFFFu : 0u; });
    EXPECT_EQ(PixelsOf(RunKernel("Light Box", stripes)), PixelsOf(RunKernel("Light Box", Uniform(12, 8, 0x7F7F7F))));
    const DirectRun run(RowOf("Light Box"), stripes, RandomPicture(12, 8, kModeGrey, 1));
    EXPECT_TRUE(run.good);
    EXPECT_EQ(run.context.secondResult, nullptr);
}

} // namespace lmf::testing
