#include <gtest/gtest.h>

#include <cmath>

#include "image/color/palette.h"

namespace lmf::testing {

TEST(PaletteNearest, WeighsGreenOverRedOverBlue) {
    // Seen from black: red 20 costs 1200, green 17 1156, blue 25 1250.
    const Palette768 palette{{20, 0, 0, 0, 17, 0, 0, 0, 25}};
    EXPECT_EQ(PaletteNearest(0, 0, 0, palette, 3), 1);
    EXPECT_EQ(PaletteNearest(0, 0, 0, palette, 1), 0);
    EXPECT_EQ(PaletteNearest(0, 0, 24, palette, 3), 2);
}

TEST(PaletteNearest, TakesTheLowestOfEqualsAndAnExactMatchAnywhere) {
    const Palette768 palette{{10, 10, 10, 14, 10, 10, 12, 10, 10, 12, 10, 10}};
    EXPECT_EQ(PaletteNearest(12, 10, 10, palette, 4), 2);
    EXPECT_EQ(PaletteNearest(12, 11, 10, palette, 2), 0);
    EXPECT_EQ(PaletteNearest(12, 10, 10, palette, 0), 0);
    EXPECT_EQ(PaletteNearest(12, 10, 10, palette, -3), 0);
}

TEST(MixColors, TruncatesEachChannelInSinglePrecision) {
    EXPECT_EQ(MixColors(0x00102030, 0x00FFFFFF, 0.0f), 0x00102030u);
    EXPECT_EQ(MixColors(0x00102030, 0x00FFFFFF, 1.0f), 0x00FFFFFFu);
    EXPECT_EQ(MixColors(0x000A00FF, 0x000B0100, 0.5f), 0x000A007Fu);
    // Past the end only the low byte stays: 255 * 2 = 510.
    EXPECT_EQ(MixColors(0, 0xFFFFFF, 2.0f), 0xFEFEFEu);
    EXPECT_EQ(MixColors(0, 0xFFFFFF, INFINITY), 0u);
}

} // namespace lmf::testing
