#include "image/color/lightness.h"

#include <gtest/gtest.h>

namespace lmf::testing {

TEST(ShiftKeepingLightness, WorkedExamples) {
    struct Case {
        Color color;
        int32_t red, green, blue;
        Color shifted;
    };
    const Case cases[] = {
        {0x3264C8, 0, 0, 0, 0x3163C8},      {0x3264C8, 30, 0, -30, 0x1361E6}, {0x64C832, 0, 20, 0, 0x56D524},
        {0xDC5A3C, -40, 0, 40, 0xFE5E19},   {0xB428DC, 0, 0, 0, 0xB528DB},    {0xC8F0FA, 0, -30, 0, 0xC7D1FA},
        {0x1E050A, 100, 0, -100, 0x000123}, {0x4D4D4D, 0, 0, 0, 0x4D4D4D},    {0x32C8C8, 0, 0, 0, 0x31C5C8},
        {0xFFFFFF, -50, 0, 50, 0xFFFFFF},
    };
    for (const Case &each : cases)
        EXPECT_EQ(ShiftKeepingLightness(each.color, each.red, each.green, each.blue), each.shifted)
            << std::hex << each.color;
}

TEST(ShiftKeepingLightness, ManyColors) {
    // A checksum (FNV-1a) of what another program made of the same rules.
    uint32_t sum = 2166136261u;
    for (uint32_t i = 0; i < 20000; i++) {
        const uint32_t draw = i * 2654435761u;
        const Color color = PackColor(draw >> 24, draw >> 14 & 255, draw >> 4 & 255);
        const auto shift = static_cast<int32_t>((draw >> 3) % 101) - 50;
        const Color moved =
            i % 2 != 0 ? ShiftKeepingLightness(color, shift, 0, -shift) : ShiftKeepingLightness(color, 0, shift, 0);
        for (uint8_t channel : {RedOf(moved), GreenOf(moved), BlueOf(moved)}) sum = (sum ^ channel) * 16777619u;
    }
    EXPECT_EQ(sum, 0x45E93681u);
}

} // namespace lmf::testing
