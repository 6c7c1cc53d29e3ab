#include <gtest/gtest.h>

#include <cmath>

#include "image/color/hsv.h"

namespace lmf::testing {

TEST(Hsv, NamesTheCornersOfTheColorCube) {
    struct Case {
        Color color;
        Hsv hsv;
    };
    for (const Case &corner : {Case{0x000000, {-1, 0, 0}}, Case{0xFFFFFF, {0, 0, 1}}, Case{0x0000FF, {0, 1, 1}},
                               Case{0x00FFFF, {60, 1, 1}}, Case{0x00FF00, {120, 1, 1}}, Case{0xFFFF00, {180, 1, 1}},
                               Case{0xFF0000, {240, 1, 1}}, Case{0xFF00FF, {300, 1, 1}}}) {
        const Hsv hsv = RgbToHsv(corner.color);
        EXPECT_EQ(hsv.hue, corner.hsv.hue) << corner.color;
        EXPECT_EQ(hsv.saturation, corner.hsv.saturation) << corner.color;
        EXPECT_EQ(hsv.value, corner.hsv.value) << corner.color;
        EXPECT_EQ(HsvToRgb(corner.hsv), corner.color);
    }
}

TEST(Hsv, ThereAndBackLosesAtMostOneByTruncation) {
    for (Color color = 0; color <= 0xFFFFFF; color += 1021) {
        const Color back = HsvToRgb(RgbToHsv(color));
        for (int32_t shift : {0, 8, 16}) ASSERT_LE((color >> shift & 255) - (back >> shift & 255), 1u) << color;
    }
}

TEST(Hsv, LimitsFromAboveAndCountsStrangeSectorsAsTheLast) {
    EXPECT_EQ(HsvToRgb({0, 7, 7}), 0x0000FFu);
    EXPECT_EQ(HsvToRgb({200, 0, 3}), 0xFFFFFFu);
    EXPECT_EQ(HsvToRgb({200, 0, -3}), 0u);
    EXPECT_EQ(HsvToRgb({330, 1, 1}), 0x7F00FFu);
    EXPECT_EQ(HsvToRgb({390, 1, 1}), 0x7F00FFu);
    EXPECT_EQ(HsvToRgb({-30, 1, 1}), 0x7F00FFu);
    EXPECT_EQ(HsvToRgb({1e30f, 1, 1}), 0x0000FFu | 0xFF0000u);
    EXPECT_EQ(HsvToRgb({NAN, NAN, NAN}), 0u);
}

} // namespace lmf::testing
