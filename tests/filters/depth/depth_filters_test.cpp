#include "image/color/dither.h"
#include "support/pictures.h"

namespace lmf::testing {

TEST(ConvertTo256Colors, TakesTheLeastDepthForTheColors) {
    struct Case {
        uint32_t colors, bits;
    };
    for (const Case &item :
         {Case{1, 1}, Case{2, 1}, Case{3, 4}, Case{16, 4}, Case{17, 8}, Case{200, 8}, Case{255, 8}}) {
        Pixels pixels;
        for (uint32_t i = 0; i < item.colors; i++) pixels.push_back(i * 0x010201);
        const LockedDib picture = MakePicture(static_cast<int32_t>(item.colors), 1, 24, pixels);
        const LockedDib result = RunKernel("Convert to 256 Colors", picture, {{&P::FilterConvertTo256Dither, 0}});
        ASSERT_TRUE(result);
        EXPECT_EQ(result.View().bits, item.bits) << item.colors;
        if (item.colors < 3) continue;
        ExpectPixels(result, [](int32_t x, int32_t) { return static_cast<uint32_t>(x); });
    }
}

TEST(ConvertTo256Colors, TwoColorsFromALightCornerChangePlaces) {
    const LockedDib picture = MakePicture(2, 1, 24, {0xFFFFFF, 0x000000});
    const LockedDib result = RunKernel("Convert to 256 Colors", picture);
    EXPECT_EQ(PixelsOf(result), (Pixels{1, 0}));
    EXPECT_TRUE(PaletteOf(result).At(0) == 0xFFFFFF && PaletteOf(result).At(1) == 0);
}

TEST(ConvertTo256Colors, DithersIndexedPicturesByTheirColors) {
    const LockedDib picture = RandomPicture(21, 13, kModePalette, 3), rgb = RunKernel("Convert to RGB", picture);
    EXPECT_TRUE(SamePicture(RunKernel("Convert to 256 Colors", picture), RunKernel("Convert to 256 Colors", rgb)));
    const LockedDib color = RandomPicture(21, 13, kModeTrueColor, 3);
    EXPECT_FALSE(SamePicture(RunKernel("Convert to 256 Colors", color),
                             RunKernel("Convert to 256 Colors", color, {{&P::FilterConvertTo256Dither, 0}})));
}

TEST(ConvertToMono, DitheringFollowsTheGeneralSettingsOfBothFilters) {
    Pixels pixels(40, 0x404040);
    for (size_t i = 0; i < pixels.size(); i += 3) pixels[i] = 0xB0B0B0;
    const LockedDib picture = MakePicture(8, 5, 24, pixels);
    for (const MonoTone &tone : {MonoTone{25, 25}, MonoTone{90, 10}}) {
        FilterContext context = MakeContext();
        if (tone.brightness != context.ditherBrightness)
            context.ditherBrightness = tone.brightness, context.ditherContrast = tone.contrast;
        const LockedDib expected(ErrorDiffuse(picture, kBlackAndWhite, 1, tone));
        EXPECT_TRUE(SamePicture(RunKernel("Convert to Mono", picture, context), expected));
        EXPECT_EQ(PixelsOf(RunKernel("Convert to 256 Colors", picture, context)), PixelsOf(expected));
    }
    EXPECT_EQ(PixelsOf(RunKernel("Convert to Mono", MakePicture(3, 1, 8, {127, 128, 129}),
                                 {{&P::FilterConvertToMonoDither, 0}})),
              (Pixels{0, 0, 1}));
}

TEST(ConvertToMono, DropsTheSecondPictureOnSuccessAlone) {
    for (int32_t dither : {0, 1}) {
        FilterContext context = MakeContext();
        context.FilterConvertToMonoDither = dither;
        context.secondResult = MakePicture(2, 2, 8).Release();
        const DibHandle second = context.secondResult;
        EXPECT_FALSE(RunKernel("Convert to Mono", RandomPicture(2, 2, kModeMono, 1), context));
        EXPECT_EQ(context.secondResult, second);
        EXPECT_TRUE(RunKernel("Convert to Mono", RandomPicture(2, 2, kModeGrey, 1), context));
        EXPECT_EQ(context.secondResult, nullptr);
    }
}

TEST(ConvertToGreyAndRgb, UseTheTable) {
    const Palette768 palette{{0, 0, 255, 200, 10, 20}};
    for (uint32_t bits : {1u, 4u, 8u}) {
        LockedDib picture = MakePalettePicture(2, 1, bits, palette, {0, 1});
        LockedDib grey = RunKernel("Convert to Grey", picture);
        EXPECT_EQ(DibClassify(grey), kModeGrey);
        EXPECT_EQ(PixelsOf(grey), (Pixels{0, 200}));
        EXPECT_EQ(PixelsOf(RunKernel("Convert to RGB", picture)), (Pixels{0xFF0000, 0x140AC8}));
    }
    LockedDib color = MakePicture(2, 1, 24, {0xFF0000, 0x646464});
    EXPECT_EQ(PixelsOf(RunKernel("Convert to Grey", color)), (Pixels{28, 98}));
}

TEST(BayerDither, TypesGiveTheirDepths) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette}) {
        LockedDib picture = RandomPicture(13, 9, mode, 3), rgb = RunKernel("Convert to RGB", picture);
        const LockedDib expected[] = {LockedDib(BayerMono(rgb)), LockedDib(BayerEight(rgb)),
                                      LockedDib(BayerRgb332(rgb))};
        for (int32_t type = 0; type < 3; type++) {
            const LockedDib result = RunKernel("Bayer Dither", picture, {{&P::FilterBayerType, type}});
            EXPECT_TRUE(SamePicture(result, expected[type])) << mode << " " << type;
        }
    }
}

} // namespace lmf::testing
