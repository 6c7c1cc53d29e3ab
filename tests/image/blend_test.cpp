#include "image/blend.h"
#include "support/pictures.h"

namespace lmf::testing {

static uint32_t BlendOne(uint32_t mode, uint32_t a, uint32_t b) {
    const DibOwner base = MakePicture(1, 1, 24, {a}), top = MakePicture(1, 1, 24, {b});
    return PixelsOf(DibOwner(DibBlend(base.handle, top.handle, mode))).at(0);
}

TEST(DibBlend, WorkedExamplesOfEveryMode) {
    // Three channels a time: base 200, 100, 255 against top 50, 180, 255, then base 0, 90, 127 against 0, 128, 127.
    struct Case {
        uint32_t red, green, blue;
    };
    static constexpr Case kFirst[] = {
        {200, 100, 255}, {200, 180, 255}, {50, 100, 255}, {39, 70, 255},   {125, 140, 255}, {250, 255, 255},
        {0, 25, 255},    {150, 80, 0},    {250, 230, 0},  {211, 210, 255}, {172, 139, 0},   {78, 164, 255},
        {64, 172, 255},  {167, 141, 255}, {45, 204, 255}, {115, 169, 255}, {100, 104, 255}, {0, 255, 255},
        {195, 133, 255}, {249, 255, 255}, {0, 35, 255},   {250, 255, 255}, {0, 25, 255}};
    static constexpr Case kSecond[] = {{0, 90, 127},  {0, 128, 127}, {0, 90, 127},  {0, 45, 63},   {0, 109, 127},
                                       {0, 218, 254}, {0, 0, 0},     {0, 38, 0},    {0, 218, 254}, {1, 174, 191},
                                       {0, 128, 128}, {0, 91, 126},  {0, 109, 126}, {0, 90, 126},  {0, 90, 126},
                                       {0, 90, 126},  {0, 90, 127},  {0, 0, 0},     {0, 63, 126},  {0, 181, 254},
                                       {0, 0, 0},     {0, 218, 254}, {0, 0, 0}};
    for (uint32_t mode = 0; mode < 23; mode++) {
        const Case &one = kFirst[mode], &two = kSecond[mode];
        EXPECT_EQ(BlendOne(mode, PackColor(200, 100, 255), PackColor(50, 180, 255)),
                  PackColor(one.red, one.green, one.blue))
            << mode;
        EXPECT_EQ(BlendOne(mode, PackColor(0, 90, 127), PackColor(0, 128, 127)),
                  PackColor(two.red, two.green, two.blue))
            << mode;
    }
    EXPECT_EQ(BlendOne(23, 0x123456, 0xFFFFFF), 0x123456u);
    EXPECT_EQ(BlendOne(0xFFFFFFFF, 0x123456, 0xFFFFFF), 0x123456u);
}

TEST(DibBlend, ASmallerTopCountsAsWhiteOutside) {
    DibOwner base = RandomPicture(9, 5, kModeTrueColor, 3), small = RandomPicture(6, 3, kModeTrueColor, 4);
    DibLock from(small.handle);
    const DibOwner full = PictureLike(base.handle, [&](int32_t x, int32_t y) { return DibGetPixel(from.image, x, y); });
    for (uint32_t mode : {3u, 7u, 12u, 18u}) {
        EXPECT_TRUE(SamePicture(DibOwner(DibBlend(base.handle, small.handle, mode)),
                                DibOwner(DibBlend(base.handle, full.handle, mode))));
    }
    EXPECT_EQ(DibBlend(base.handle, nullptr, 0), nullptr);
    EXPECT_EQ(DibBlend(nullptr, base.handle, 0), nullptr);
}

TEST(DibBlend, OtherDepthsGiveTheirRawValues) {
    // An index stands in the red byte; alpha is not looked at.
    DibOwner grey = MakePicture(2, 1, 8, {10, 250}), color = MakePicture(2, 1, 32, {0x80010203, 0x00FF00FF});
    EXPECT_EQ(PixelsOf(DibOwner(DibBlend(grey.handle, color.handle, 5))), (Pixels{0x01020D, 0xFF00FF}));
    EXPECT_EQ(PixelsOf(DibOwner(DibBlend(color.handle, grey.handle, 5))), (Pixels{0x01020D, 0xFF00FF}));
}

} // namespace lmf::testing
