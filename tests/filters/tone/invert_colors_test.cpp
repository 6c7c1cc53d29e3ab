#include <gtest/gtest.h>

#include "support/pictures.h"

namespace lmf::testing {

TEST(InvertColors, TrueColorAndGreyChangePixels) {
    DibOwner color = MakePicture(3, 1, 24, {0x000000, 0x0102FF, 0xFFFFFF});
    EXPECT_EQ(PixelsOf(RunKernel("Invert Colors", color.handle).handle),
              (std::vector<uint32_t>{0xFFFFFF, 0xFEFD00, 0x000000}));
    DibOwner grey = MakePicture(3, 1, 8, {0, 100, 255});
    EXPECT_EQ(PixelsOf(RunKernel("Invert Colors", grey.handle).handle), (std::vector<uint32_t>{255, 155, 0}));
}

TEST(InvertColors, AlphaOf32BitPicturesBecomesZero) {
    DibOwner picture = MakePicture(1, 1, 32, {0x80102030});
    EXPECT_EQ(PixelsOf(RunKernel("Invert Colors", picture.handle).handle), (std::vector<uint32_t>{0x00EFDFCF}));
}

TEST(InvertColors, PalettePicturesKeepTheirPixels) {
    for (ImageMode mode : {kModePalette, kModeMono}) {
        DibOwner picture = RandomPicture(13, 5, mode, 7);
        DibOwner result = RunKernel("Invert Colors", picture.handle);
        EXPECT_EQ(PixelsOf(result.handle), PixelsOf(picture.handle));
        Palette768 before, after;
        uint32_t bits = 0;
        ASSERT_TRUE(DibInfo(picture.handle, nullptr, nullptr, &bits, &before));
        ASSERT_TRUE(DibInfo(result.handle, nullptr, nullptr, nullptr, &after));
        for (uint32_t i = 0; i < 3u << bits; i++) ASSERT_EQ(after.rgb[i], 255 - before.rgb[i]);
    }
}

TEST(InvertColors, TwiceIsTheIdentity) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        for (int32_t width : {1, 2, 33}) {
            DibOwner picture = RandomPicture(width, 3, mode, 5);
            DibOwner once = RunKernel("Invert Colors", picture.handle);
            FilterContext context = MakeContext(mode);
            EXPECT_TRUE(SamePicture(RunKernel("Invert Colors", once.handle, &context, true).handle, picture.handle));
        }
    }
}

} // namespace lmf::testing
