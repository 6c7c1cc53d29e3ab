// Stars: where light is added, and how much.
#include <cmath>

#include "support/pictures.h"

namespace lmf::testing {

namespace {

struct Lamp {
    int32_t x, y, side;
    Color color = 0xFFFFFF;
};

/// Square lamps in the dark.
LockedDib Night(const std::vector<Lamp> &lamps, Color dark = 0) {
    const LockedDib sky(DibCreateSolid(200, 160, dark));
    return PictureLike(sky, [&](int32_t x, int32_t y) {
        Color color = dark;
        for (const Lamp &lamp : lamps)
            if (x >= lamp.x && x < lamp.x + lamp.side && y >= lamp.y && y < lamp.y + lamp.side) color = lamp.color;
        return color;
    });
}

uint32_t RedAt(const LockedDib &picture, int32_t x, int32_t y) {
    return DibGetPixel(picture, x, y) & 255;
}

/// Pixels of column x in [top, bottom) that are lit.
int32_t LitIn(const LockedDib &picture, int32_t x, int32_t top, int32_t bottom) {
    int32_t lit = 0;
    for (int32_t y = top; y < bottom; y++) lit += RedAt(picture, x, y) > 0;
    return lit;
}

} // namespace

TEST(Stars, AddACrossOfLightRoundTheMiddleOfTheLamp) {
    const LockedDib source = Night({{96, 76, 9}}, 0x101010);
    for (int32_t isTurned : {0, 1}) {
        for (int32_t isSmooth : {0, 1}) {
            const LockedDib result = RunKernel(
                "Stars", source,
                {{&P::FilterStarAngle, 0}, {&P::FilterStarHighres, isSmooth}, {&P::FilterStarRotmatrix, isTurned}});
            ForEachPixel(source, [&](int32_t x, int32_t y) { ASSERT_GE(RedAt(result, x, y), RedAt(source, x, y)); });
            for (int32_t away : {8, 12, 16}) {
                EXPECT_GT(RedAt(result, 100 + away, 80), 40u);
                EXPECT_EQ(RedAt(result, 100 + away, 80), RedAt(result, 100, 80 + away));
                EXPECT_EQ(RedAt(result, 100 + away, 80), RedAt(result, 100 - away, 80));
                EXPECT_EQ(RedAt(result, 100 + away, 80), RedAt(result, 100, 80 - away));
                EXPECT_EQ(RedAt(result, 100 + away, 80 + away), 0x10u);
            }
        }
    }
}

TEST(Stars, TurnCounterClockwiseAndTakeTheColorOfTheLamp) {
    const LockedDib result =
        RunKernel("Stars", Night({{96, 76, 9, 0x00FFFF}}), {{&P::FilterStarAngle, 30}, {&P::FilterStarThreshold, 60}});
    const auto x = static_cast<int32_t>(std::lround(100 + 12 * std::cos(std::acos(-1) / 6)));
    EXPECT_GT(RedAt(result, x, 80 - 6), 20u);
    EXPECT_EQ(RedAt(result, x, 80 + 6), 0u);
    EXPECT_EQ(DibGetPixel(result, x, 80 - 6) >> 16, 0u); // yellow light has no blue
}

TEST(Stars, OneForEachSpotHoweverManyCellsItHas) {
    struct Case {
        std::vector<Lamp> lamps;
        Color dark;
        int32_t column, stars;
    };
    // The column lies to the right of the lamps' own pixels, within the reach of their rays.
    for (const Case &c : {Case{{{60, 50, 41}}, 0, 103, 1}, Case{{{80, 30, 6}, {80, 110, 6}}, 0, 95, 2},
                          Case{{{80, 30, 6}, {80, 70, 6}, {80, 110, 6}}, 0, 95, 3}}) {
        const LockedDib result =
            RunKernel("Stars", Night(c.lamps, c.dark), {{&P::FilterStarAngle, 0}, {&P::FilterStarAutoline, 0}});
        int32_t stars = 0;
        for (int32_t y = 1; y < 160; y++)
            stars += RedAt(result, c.column, y) > 0 && RedAt(result, c.column, y - 1) == 0;
        EXPECT_EQ(stars, c.stars);
    }
    // A ring has its star on itself, not in its dark middle.
    const LockedDib ring = RunKernel("Stars", Night({{60, 40, 81}, {70, 50, 61, 0}}), {{&P::FilterStarAngle, 0}});
    EXPECT_EQ(RedAt(ring, 100, 80), 0u);
    EXPECT_GT(RedAt(ring, 70, 42), 0u);
    // Two lamps in one glow that is itself above the threshold.
    const LockedDib glow = Night({{40, 20, 120, 0xA0A0A0}, {90, 40, 6}, {90, 110, 6}}, 0);
    const LockedDib lit = RunKernel("Stars", glow, {{&P::FilterStarAngle, 0}});
    for (int32_t y : {42, 112}) EXPECT_GT(RedAt(lit, 104, y), 0xA0u + 20);
    EXPECT_EQ(RedAt(lit, 104, 77), 0xA0u);
}

TEST(Stars, GrowWithTheLampAndTheSettings) {
    const auto reach = [](uint32_t tone, const std::vector<Setting> &settings) {
        std::vector<Setting> all = settings;
        all.push_back({&P::FilterStarAngle, 0});
        const LockedDib result = RunKernel("Stars", Night({{96, 76, 9, tone * 0x010101}}), all);
        int32_t x = 105;
        while (x < 200 && RedAt(result, x, 80) > 0) x++;
        return x;
    };
    EXPECT_EQ(reach(120, {}), 105);
    EXPECT_LT(reach(180, {}), reach(220, {}));
    EXPECT_LT(reach(220, {}), reach(255, {}));
    EXPECT_LT(reach(220, {{&P::FilterStarThreshold, 200}}), reach(220, {{&P::FilterStarThreshold, 100}}));

    const auto run = [](const std::vector<Setting> &settings) {
        std::vector<Setting> all = settings;
        all.push_back({&P::FilterStarAngle, 0});
        return RunKernel("Stars", Night({{96, 76, 9}}), all);
    };
    const LockedDib weak = run({{&P::FilterStarBrightness, 1}}), strong = run({{&P::FilterStarBrightness, 5}});
    EXPECT_LT(RedAt(weak, 112, 80), RedAt(strong, 112, 80));
    const LockedDib thin = run({{&P::FilterStarAutoline, 0}}),
                    thick = run({{&P::FilterStarLinesize, 9}, {&P::FilterStarAutoline, 0}}),
                    bright = run({{&P::FilterStarLinesize, 9}});
    EXPECT_EQ(LitIn(thin, 108, 0, 160), 1);
    EXPECT_NEAR(LitIn(thick, 108, 0, 160), 6, 2);
    EXPECT_NEAR(LitIn(bright, 108, 0, 160), 12, 3);
}

} // namespace lmf::testing
