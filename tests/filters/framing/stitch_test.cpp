// Stitch: where the two pictures stand, what each depth makes of the joined one, and the second picture.
#include "engine/direct_run.h"
#include "image/scale/resample.h"
#include "support/clipboard.h"

namespace lmf::testing {

namespace {

constexpr Color kPaper = 0x203040;
constexpr int32_t kRight = 0, kBelow = 1, kLeft = 2, kAbove = 3;

FilterContext Context(int32_t mode, int32_t gutter, int32_t resize, const LockedDib &clipboard) {
    FilterContext context =
        ContextWith({{&P::FilterStitchMode, mode}, {&P::FilterStitchGutter, gutter}, {&P::FilterStitchResize, resize}});
    context.paperColor = kPaper;
    context.clipboard = clipboard.owner.handle;
    return context;
}

} // namespace

TEST(Stitch, BothPicturesStandOnTheSheet) {
    struct Case {
        int32_t mode, gutter, width, height, x, y, joinedX, joinedY;
    };
    static constexpr Case kCases[] = {{kRight, 3, 20, 9, 0, 1, 13, 0},
                                      {kLeft, 3, 20, 9, 10, 1, 0, 0},
                                      {kBelow, 5, 10, 20, 0, 0, 1, 11},
                                      {kAbove, 5, 10, 20, 0, 14, 1, 0},
                                      {kRight, 0, 17, 9, 0, 1, 10, 0}};
    for (uint32_t bits : {24u, 32u, 8u}) {
        const LockedDib source = RandomDepth(10, 6, bits, 1), joined = RandomDepth(7, 9, bits == 8 ? 8 : 24, 2);
        for (const Case &c : kCases) {
            FilterContext context = Context(c.mode, c.gutter, 0, joined);
            const LockedDib sheet = RunKernel("Stitch", source, context);
            ASSERT_TRUE(ReadView(sheet).width == c.width && ReadView(sheet).height == c.height);
            const uint32_t opaque = bits == 32 ? 0xFF000000 : 0;
            const uint32_t paper = bits == 8 ? static_cast<uint32_t>(WeightedGrey(kPaper)) : kPaper | opaque;
            ExpectPixels(sheet, [&](int32_t x, int32_t y) {
                const uint32_t own = DibGetPixel(source, x - c.x, y - c.y);
                if (own != kOutside) return own;
                const uint32_t other = DibGetPixel(joined, x - c.joinedX, y - c.joinedY);
                return other != kOutside ? other | opaque : paper;
            });
        }
    }
}

TEST(Stitch, ResizeKeepsTheProportions) {
    struct Case {
        int32_t mode, joinedWidth, joinedHeight, width, height;
    };
    static constexpr Case kCases[] = {
        {kRight, 30, 20, 40 + 45, 30}, {kAbove, 30, 20, 40, 30 + 27}, {kLeft, 1, 90, 40 + 1, 30},
        {kBelow, 300, 1, 40, 30 + 1},  {kRight, 17, 30, 57, 30},
    };
    const LockedDib source = RandomPicture(40, 30, kModeTrueColor, 1);
    for (const Case &c : kCases) {
        const LockedDib joined = RandomPicture(c.joinedWidth, c.joinedHeight, kModeTrueColor, 2);
        FilterContext context = Context(c.mode, 0, 1, joined);
        const LockedDib sheet = RunKernel("Stitch", source, context);
        ASSERT_TRUE(ReadView(sheet).width == c.width && ReadView(sheet).height == c.height);
        if (c.mode != kRight) continue;
        const LockedDib scaled(DibScaleTo(joined, c.width - 40, 30, 0));
        ExpectPixels(scaled, [&](int32_t x, int32_t y) { return DibGetPixel(sheet, x + 40, y); });
    }
}

TEST(Stitch, TheJoinedPictureTakesTheDepthOfTheOther) {
    const Color red = 0x0000FF, blue = 0x600000;
    Palette768 palette = {{0, 0, 0, 255, 0, 0, 0, 0, 0x60, 9, 9, 9}};
    const LockedDib joined = MakePalettePicture(2, 1, 4, palette, {1, 2});
    struct Case {
        LockedDib source;
        uint32_t left, right;
    };
    Palette768 other = {{0, 0, 0x60, 255, 0, 0}};
    const Case cases[] = {
        {MakePicture(1, 1, 24), red, blue},          {MakePicture(1, 1, 32), 0xFF000000 | red, 0xFF000000 | blue},
        {MakePicture(1, 1, 8), 77, 0x60 * 28 / 255}, {MakePalettePicture(1, 1, 8, other), 1, 0},
        {MakePalettePicture(1, 1, 4, other), 1, 0},
    };
    for (const Case &c : cases) {
        FilterContext context = Context(kRight, 0, 0, joined);
        const LockedDib sheet = RunKernel("Stitch", c.source, context);
        EXPECT_EQ(ReadView(sheet).bits, ReadView(c.source).bits);
        EXPECT_TRUE(DibGetPixel(sheet, 1, 0) == c.left && DibGetPixel(sheet, 2, 0) == c.right) << c.left;
    }
}

TEST(Stitch, WhatIsAddedIsOpaqueInTheSecondPicture) {
    const LockedDib source = RandomPicture(6, 5, kModeGrey, 1), alpha = RandomPicture(6, 5, kModeGrey, 2),
                    joined = RandomPicture(4, 5, kModeTrueColor, 3);
    const DirectRun run(RowOf("Stitch"), source, alpha, Context(kLeft, 2, 1, joined));
    ASSERT_TRUE(run.good);
    const DibReadLock second = run.Second();
    ASSERT_EQ(second.view.width, 12);
    ForEachPixel(second.view, [&](int32_t x, int32_t y) {
        EXPECT_EQ(DibGetPixel(second.view, x, y), x < 6 ? 255u : DibGetPixel(alpha, x - 6, y));
    });
    EXPECT_NE(DibGetPixel(run.Result().view, 4, 0), 255u) << "the gutter of a grey picture is paper";
}

TEST(Stitch, TakesTheClipboardsPictureOrFails) {
    const LockedDib source = RandomPicture(6, 5, kModeTrueColor, 1), joined = RandomPicture(4, 5, kModeTrueColor, 3);
    FilterContext context = Context(kRight, 0, 1, LockedDib());
    EXPECT_FALSE(RunKernel("Stitch", source, context));
    PutOnClipboard(joined.owner.handle);
    EXPECT_EQ(ReadView(RunKernel("Stitch", source, context)).width, 10);
    PutOnClipboard(nullptr);
    const BlockOwner broken(BlockAlloc(7));
    context.clipboard = broken.handle;
    EXPECT_FALSE(RunKernel("Stitch", source, context));
}

} // namespace lmf::testing
