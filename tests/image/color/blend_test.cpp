#include "image/color/blend.h"
#include "support/pictures.h"

namespace lmf::testing {

static uint32_t BlendOne(uint32_t mode, uint32_t a, uint32_t b) {
    const LockedDib base = MakePicture(1, 1, 24, {a}), top = MakePicture(1, 1, 24, {b});
    return PixelsOf(LockedDib(DibBlend(base, top, mode))).at(0);
}

TEST(DibBlend, WorkedExamplesOfEveryMode) {
    // Three channels a time: base 200, 100, 255 against top 50, 180, 255, then base 0, 90, 127 against 0, 128, 127.
    static constexpr Color kFirst[] = {0xFF64C8, 0xFFB4C8, 0xFF6432, 0xFF4627, 0xFF8C7D, 0xFFFFFA, 0xFF1900, 0x005096,
                                       0x00E6FA, 0xFFD2D3, 0x008BAC, 0xFFA44E, 0xFFAC40, 0xFF8DA7, 0xFFCC2D, 0xFFA973,
                                       0xFF6864, 0xFFFF00, 0xFF85C3, 0xFFFFF9, 0xFF2300, 0xFFFFFA, 0xFF1900};
    static constexpr Color kSecond[] = {0x7F5A00, 0x7F8000, 0x7F5A00, 0x3F2D00, 0x7F6D00, 0xFEDA00, 0x000000, 0x002600,
                                        0xFEDA00, 0xBFAE01, 0x808000, 0x7E5B00, 0x7E6D00, 0x7E5A00, 0x7E5A00, 0x7E5A00,
                                        0x7F5A00, 0x000000, 0x7E3F00, 0xFEB500, 0x000000, 0xFEDA00, 0x000000};
    for (uint32_t mode = 0; mode < 23; mode++) {
        EXPECT_EQ(BlendOne(mode, PackColor(200, 100, 255), PackColor(50, 180, 255)), kFirst[mode]) << mode;
        EXPECT_EQ(BlendOne(mode, PackColor(0, 90, 127), PackColor(0, 128, 127)), kSecond[mode]) << mode;
    }
    EXPECT_EQ(BlendOne(23, 0x123456, 0xFFFFFF), 0x123456u);
    EXPECT_EQ(BlendOne(0xFFFFFFFF, 0x123456, 0xFFFFFF), 0x123456u);
}

TEST(DibBlend, ASmallerTopCountsAsWhiteOutside) {
    LockedDib base = RandomPicture(9, 5, kModeTrueColor, 3), small = RandomPicture(6, 3, kModeTrueColor, 4);
    const ReadView from = small;
    const LockedDib full = PictureLike(base, [&](int32_t x, int32_t y) { return DibGetPixel(from, x, y); });
    for (uint32_t mode : {3u, 7u, 12u, 18u}) {
        EXPECT_TRUE(SamePicture(LockedDib(DibBlend(base, small, mode)), LockedDib(DibBlend(base, full, mode))));
    }
    EXPECT_EQ(DibBlend(base, nullptr, 0), nullptr);
    EXPECT_EQ(DibBlend(nullptr, base, 0), nullptr);
}

TEST(DibBlend, OtherDepthsGiveTheirRawValues) {
    // An index stands in the red byte; alpha is not looked at.
    LockedDib grey = MakePicture(2, 1, 8, {10, 250}), color = MakePicture(2, 1, 32, {0x80010203, 0x00FF00FF});
    EXPECT_EQ(PixelsOf(LockedDib(DibBlend(grey, color, 5))), (Pixels{0x01020D, 0xFF00FF}));
    EXPECT_EQ(PixelsOf(LockedDib(DibBlend(color, grey, 5))), (Pixels{0x01020D, 0xFF00FF}));
}

} // namespace lmf::testing
