// Channels, Split channels, Add Alpha and Remove Alpha.
#include "support/clipboard.h"
#include "support/pictures.h"

namespace lmf::testing {

static Pixels Exchanged(const LockedDib &picture, int32_t mode) {
    return PixelsOf(RunKernel("Channels", picture, {{&P::FilterChannelMode, mode}}));
}

TEST(Channels, EveryModeMovesTheRightChannels) {
    // Red 1, green 2, blue 3, written as blue green red.
    static constexpr uint32_t kResults[] = {0x010203, 0x030102, 0x020301, 0x010302, 0x020103, 0x020103,
                                            0x010302, 0x030102, 0x020301, 0x010203, 0x030101, 0x010201,
                                            0x030202, 0x020201, 0x030203, 0x030301};
    for (int32_t mode = 0; mode < 16; mode++) {
        for (int32_t width : {1, 5, 6, 23}) {
            const auto count = static_cast<size_t>(width);
            EXPECT_EQ(Exchanged(MakePicture(width, 1, 24, Pixels(count, 0x030201)), mode),
                      Pixels(count, kResults[mode]))
                << mode;
        }
    }
    EXPECT_EQ(Exchanged(MakePicture(1, 1, 32, {0x80030201}), 0), (Pixels{0x010203}));
}

static LockedDib Split(const ReadView &picture, int32_t mode, int32_t remove, bool tint, DibHandle second = nullptr) {
    FilterContext context =
        ContextWith({{&P::FilterSplitMode, mode}, {&P::FilterSplitRemove, remove}, {&P::FilterSplitTint, tint}});
    context.second = second;
    return RunKernel("Split channels", picture, &context);
}

TEST(SplitChannels, PlanesHoldThePicturesOwnChannels) {
    const LockedDib picture = MakePicture(1, 1, 24, {0x3C6EC8}); // red 200, green 110, blue 60
    // Black removal of 90 percent takes 54 off each ink.
    static constexpr uint32_t kPlanes[] = {200, 110, 60, 200, 110, 60, 146, 56, 6, 54, 0};
    for (int32_t mode = 0; mode <= 10; mode++) {
        const LockedDib plane = Split(picture, mode, 90, false);
        EXPECT_EQ(PixelsOf(plane), Pixels{kPlanes[mode]}) << mode;
        EXPECT_EQ(DibClassify(plane), kModeGrey);
    }
    EXPECT_EQ(PixelsOf(Split(picture, 9, 0, false)), Pixels{0});
    const LockedDib magenta = Split(picture, 7, 90, true);
    EXPECT_EQ(PaletteOf(magenta).At(200), 0xC800C8u);
    EXPECT_EQ(DibClassify(magenta), kModePalette);
}

TEST(SplitChannels, AlphaComesFromTheSecondPicture) {
    const LockedDib picture = RandomPicture(4, 3, kModeTrueColor, 1), alpha = RandomPicture(4, 3, kModeGrey, 2);
    EXPECT_EQ(PixelsOf(Split(picture, 10, 90, false, alpha)), PixelsOf(alpha));
    const BlockOwner broken(BlockAlloc(3));
    EXPECT_FALSE(Split(picture, 0, 90, false, broken));
}

TEST(AddAlpha, TakesAUniformMaskOrTheClipboards) {
    const LockedDib picture = RandomPicture(3, 2, kModeTrueColor, 1);
    FilterContext context = ContextWith({{&P::FilterAddAlphaOpacity, 90}});
    EXPECT_TRUE(SamePicture(RunKernel("Add Alpha", picture, &context).handle, picture));
    EXPECT_EQ(PixelsOf(context.secondResult), Pixels(6, 90));
    EXPECT_EQ(DibClassify(context.secondResult), kModeGrey);

    const LockedDib mask = MakePicture(1, 2, 24, {0xFFFFFF, 0x000000});
    PutOnClipboard(mask);
    EXPECT_TRUE(RunKernel("Add Alpha", picture, &context));
    EXPECT_EQ(PixelsOf(context.secondResult), (Pixels{255, 0})) << "the mask keeps its own size";
    context.FilterAddAlphaUseCBD = 0;
    EXPECT_TRUE(RunKernel("Add Alpha", picture, &context));
    EXPECT_EQ(PixelsOf(context.secondResult), Pixels(6, 90));
    PutOnClipboard(nullptr);
    BlockFree(context.secondResult);
}

TEST(RemoveAlpha, LaysThePictureOverThePaper) {
    const LockedDib picture = MakePicture(3, 1, 24, {0xC80A64, 0xC80A64, 0xC80A64});
    const LockedDib alpha = MakePicture(2, 1, 8, {128, 0});
    FilterContext context = MakeContext();
    context.second = alpha;
    context.secondResult = DibClone(alpha);
    // 128 * 200 / 255 + 127 = 227, 128 * 10 / 255 + 127 = 132, 128 * 100 / 255 + 127 = 177; no mask is opaque.
    EXPECT_EQ(PixelsOf(RunKernel("Remove Alpha", picture, &context).handle), (Pixels{0xE384B1, 0xFFFFFF, 0xC80A64}));
    EXPECT_EQ(context.secondResult, nullptr);
    context.second = nullptr;
    EXPECT_FALSE(RunKernel("Remove Alpha", picture, &context));

    const LockedDib wide = RandomPicture(37, 3, kModeTrueColor, 4), mask = RandomPicture(37, 3, kModeGrey, 5);
    context.second = mask;
    context.paperColor = 0x20C0F0;
    const ReadView from = wide, alphas = mask;
    ExpectPixels(RunKernel("Remove Alpha", wide, &context), [&](int32_t x, int32_t y) {
        return MixBytes(context.paperColor, DibGetPixel(from, x, y), DibGetPixel(alphas, x, y));
    });
}

} // namespace lmf::testing
