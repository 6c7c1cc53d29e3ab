#include "image/color/blend.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

uint32_t BlendOne(uint32_t mode, uint32_t a, uint32_t b) {
    const LockedDib base = MakePicture(1, 1, 24, {a}), top = MakePicture(1, 1, 24, {b});
    return PixelsOf(LockedDib(DibBlend(base, top, mode))).at(0);
}

} // namespace

TEST(DibBlend, WorkedExamplesOfEveryMode) {
    // Three channels a time: base 200, 100, 255 against top 50, 180, 255.
    static constexpr Color kBlended[] = {0xFF64C8, 0xFFB4C8, 0xFF6432, 0xFF4627, 0xFF8C7D, 0xFFFFFA, 0xFF1900, 0x005096,
                                         0x00E6FA, 0xFFD2D3, 0x008BAC, 0xFFA44E, 0xFFAC40, 0xFF8DA7, 0xFFCC2D, 0xFFA973,
                                         0xFF6864, 0xFFFF00, 0xFF85C3, 0xFFFFF9, 0xFF2300, 0xFFFFFA, 0xFF1900};
    for (uint32_t mode = 0; mode < 23; mode++)
        EXPECT_EQ(BlendOne(mode, PackColor(200, 100, 255), PackColor(50, 180, 255)), kBlended[mode]) << mode;
    // All pairs of channels, as checksums (FNV-1a) of what another program made of the modes' formulas.
    static constexpr uint32_t kSums[] = {0xA2D79DC5, 0x5C5446C5, 0x9AD243C5, 0xAF367DF7, 0x3D1A31C5, 0xAEC5D945,
                                         0x2F10DB45, 0xDD3BA4C5, 0xD51CEFC5, 0xC573F46D, 0xE0BC24E3, 0x4702EC4B,
                                         0x3315CB15, 0x0002F91B, 0x8D2EA845, 0xFA62A01D, 0x33A83C45, 0x88C217C5,
                                         0x0B56D2CB, 0x5A92748D, 0xA6EC86A5, 0xAEC5D945, 0x2F10DB45};
    Pixels bases, tops;
    for (uint32_t i = 0; i < 65536; i++) {
        bases.push_back(i & 255);
        tops.push_back(i >> 8);
    }
    const LockedDib base = MakePicture(256, 256, 24, bases), top = MakePicture(256, 256, 24, tops);
    for (uint32_t mode = 0; mode < 23; mode++) {
        uint32_t sum = 2166136261u;
        for (Color blended : PixelsOf(LockedDib(DibBlend(base, top, mode)))) sum = (sum ^ RedOf(blended)) * 16777619u;
        EXPECT_EQ(sum, kSums[mode]) << mode;
    }
    EXPECT_EQ(BlendOne(23, 0x123456, 0xFFFFFF), 0x123456u);
    EXPECT_EQ(BlendOne(0xFFFFFFFF, 0x123456, 0xFFFFFF), 0x123456u);
}

TEST(DibBlend, ASmallerTopCountsAsWhiteOutside) {
    const LockedDib base = RandomPicture(9, 5, kModeTrueColor, 3);
    for (const LockedDib &top : {RandomPicture(6, 3, kModeTrueColor, 4), RandomPicture(12, 7, kModeTrueColor, 4)}) {
        const LockedDib full = PictureLike(base, [&](int32_t x, int32_t y) { return DibGetPixel(top, x, y); });
        for (BlendMode mode : {kBlendMultiply, kBlendDifference, kBlendSoftLight, kBlendReflect})
            EXPECT_TRUE(SamePicture(LockedDib(DibBlend(base, top, mode)), LockedDib(DibBlend(base, full, mode))));
    }
}

TEST(DibBlend, OtherDepthsGiveTheirRawValues) {
    // An index stands in the red byte; alpha is not looked at.
    LockedDib grey = MakePicture(2, 1, 8, {10, 250}), color = MakePicture(2, 1, 32, {0x80010203, 0x00FF00FF});
    EXPECT_EQ(PixelsOf(LockedDib(DibBlend(grey, color, 5))), (Pixels{0x01020D, 0xFF00FF}));
    EXPECT_EQ(PixelsOf(LockedDib(DibBlend(color, grey, 5))), (Pixels{0x01020D, 0xFF00FF}));
}

} // namespace lmf::testing
