// Channels, Split channels, Add Alpha and Remove Alpha.
#include <utility>

#include "support/clipboard.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

LockedDib Split(const ReadView &picture, int32_t mode, int32_t remove, bool tint, DibHandle second = nullptr) {
    FilterContext context =
        ContextWith({{&P::FilterSplitMode, mode}, {&P::FilterSplitRemove, remove}, {&P::FilterSplitTint, tint}});
    context.second = second;
    return RunKernel("Split channels", picture, context);
}

/// The mask that Add Alpha makes beside the picture, which it leaves as it is.
LockedDib AddedMask(const LockedDib &picture, FilterContext &context) {
    EXPECT_TRUE(SamePicture(RunKernel("Add Alpha", picture, context), picture));
    return LockedDib(std::exchange(context.secondResult, nullptr));
}

} // namespace

TEST(Channels, EveryModeMovesTheRightChannels) {
    // Red 1, green 2, blue 3, written as blue green red.
    static constexpr uint32_t kResults[] = {0x010203, 0x030102, 0x020301, 0x010302, 0x020103, 0x020103,
                                            0x010302, 0x030102, 0x020301, 0x010203, 0x030101, 0x010201,
                                            0x030202, 0x020201, 0x030203, 0x030301};
    for (int32_t mode = 0; mode < 16; mode++) {
        for (uint32_t width : {1, 5, 6, 23}) {
            const LockedDib picture = MakePicture(int32_t(width), 1, 24, Pixels(width, 0x030201));
            const LockedDib exchanged = RunKernel("Channels", picture, {{&P::FilterChannelMode, mode}});
            EXPECT_EQ(PixelsOf(exchanged), Pixels(width, kResults[mode])) << mode;
        }
    }
    const LockedDib deep = MakePicture(1, 1, 32, {0x80030201});
    EXPECT_EQ(PixelsOf(RunKernel("Channels", deep, {{&P::FilterChannelMode, 0}})), Pixels{0x010203});
}

TEST(SplitChannels, PlanesHoldThePicturesOwnChannels) {
    const LockedDib picture = MakePicture(1, 1, 24, {0x3C6EC8}); // red 200, green 110, blue 60
    // Black removal of 90 percent takes 54 off each ink.
    static constexpr uint32_t kPlanes[] = {200, 110, 60, 200, 110, 60, 146, 56, 6, 54, 0};
    // Red, green and blue, then cyan, magenta and yellow twice, then grey.
    static constexpr Color kTints[] = {0x0000C8, 0x00C800, 0xC80000, 0xC8C800, 0xC800C8, 0x00C8C8,
                                       0xC8C800, 0xC800C8, 0x00C8C8, 0xC8C8C8, 0xC8C8C8};
    for (int32_t mode = 0; mode <= 10; mode++) {
        const LockedDib plane = Split(picture, mode, 90, false);
        EXPECT_EQ(PixelsOf(plane), Pixels{kPlanes[mode]}) << mode;
        EXPECT_EQ(DibClassify(plane), kModeGrey);
        EXPECT_EQ(PaletteOf(Split(picture, mode, 90, true)).At(200), kTints[mode]) << mode;
    }
    EXPECT_EQ(PixelsOf(Split(picture, 9, 0, false)), Pixels{0});
    EXPECT_EQ(PixelsOf(Split(MakePicture(1, 1, 24, {0x804020}), 9, 100, false)), Pixels{32});
}

TEST(SplitChannels, AlphaComesFromTheSecondPicture) {
    const LockedDib picture = RandomPicture(4, 3, kModeTrueColor, 1), alpha = RandomPicture(4, 3, kModeGrey, 2);
    EXPECT_EQ(PixelsOf(Split(picture, 10, 90, false, alpha.owner.handle)), PixelsOf(alpha));
    const BlockOwner broken(BlockAlloc(3));
    EXPECT_FALSE(Split(picture, 0, 90, false, broken.handle));
}

TEST(AddAlpha, TakesAUniformMaskOrTheClipboards) {
    const LockedDib picture = RandomPicture(3, 2, kModeTrueColor, 1);
    FilterContext context = ContextWith({{&P::FilterAddAlphaOpacity, 90}});
    const LockedDib uniform = AddedMask(picture, context);
    EXPECT_EQ(PixelsOf(uniform), Pixels(6, 90));
    EXPECT_EQ(DibClassify(uniform), kModeGrey);
    const LockedDib mask = MakePicture(1, 2, 24, {0xFFFFFF, 0x000000});
    PutOnClipboard(mask.owner.handle);
    EXPECT_EQ(PixelsOf(AddedMask(picture, context)), (Pixels{255, 0})) << "the mask keeps its own size";
    context.FilterAddAlphaUseCBD = 0;
    EXPECT_EQ(PixelsOf(AddedMask(picture, context)), Pixels(6, 90));
    PutOnClipboard(nullptr);
}

TEST(RemoveAlpha, LaysThePictureOverThePaper) {
    const LockedDib picture = MakePicture(3, 1, 24, {0xC80A64, 0xC80A64, 0xC80A64});
    const LockedDib deep = MakePicture(3, 1, 32, {0x80C80A64, 0xC80A64, 0xC80A64});
    const LockedDib alpha = MakePicture(2, 1, 8, {128, 0}), deepAlpha = MakePicture(2, 1, 24, {0x998880, 0x99FF00});
    for (const ReadView &source : {ReadView(picture), ReadView(deep)}) {
        for (DibHandle mask : {alpha.owner.handle, deepAlpha.owner.handle}) {
            FilterContext context = MakeContext();
            context.second = mask;
            context.secondResult = DibClone(alpha);
            // 128 * 200 / 255 + 127 = 227, 128 * 10 / 255 + 127 = 132, 128 * 100 / 255 + 127 = 177; no mask is opaque.
            EXPECT_EQ(PixelsOf(RunKernel("Remove Alpha", source, context)), (Pixels{0xE384B1, 0xFFFFFF, 0xC80A64}));
            EXPECT_EQ(context.secondResult, nullptr);
        }
    }
    EXPECT_FALSE(RunKernel("Remove Alpha", picture));

    const LockedDib wide = RandomPicture(37, 3, kModeTrueColor, 4), mask = RandomPicture(37, 2, kModeGrey, 5);
    FilterContext context = MakeContext();
    context.second = mask.owner.handle;
    context.paperColor = 0x20C0F0;
    ExpectPixels(RunKernel("Remove Alpha", wide, context), [&](int32_t x, int32_t y) {
        return MixBytes(context.paperColor, DibGetPixel(wide, x, y), DibGetPixel(mask, x, y) & 255);
    });
}

} // namespace lmf::testing
