// Equalize, Normalize, White Balance and Photo Fine-tune, against worked examples and a slow reading of each rule.
#include "engine/page.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(Equalize, PushesTonesAwayFromTheTwoLevels) {
    struct Case {
        int32_t shadow, highlight;
        Pixels before, after;
    };
    const Case cases[] = {
        // (128 - 100) / 2 = 14 down; (201 - 128) / 2 = 36 up, clipped at 255; 128 itself stays.
        {128, 128, {0x640A05, 0xC9C8C8, 0x808080}, {0x560000, 0xEDECEC, 0x808080}},
        // A highlight below the shadow counts as one below it: 199 rises by 0, 200 by 0, 201 by 1.
        {200, 100, {0xC7C7C7, 0xC8C8C8, 0xC90000}, {0xC7C7C7, 0xC8C8C8, 0xCA0101}},
        {0, 255, {0x000000, 0xFFFFFF, 0x123456}, {0x000000, 0xFFFFFF, 0x123456}},
    };
    for (const Case &each : cases) {
        const LockedDib picture = MakePicture(3, 1, 24, each.before);
        const std::vector<Setting> settings = {{&P::FilterEqualizeShadow, each.shadow},
                                               {&P::FilterEqualizeHightlight, each.highlight}};
        EXPECT_EQ(PixelsOf(RunKernel("Equalize", picture, settings)), each.after) << each.shadow;
    }
    const LockedDib grey = MakePicture(4, 1, 8, {0, 100, 131, 255}), few = MakePicture(4, 1, 4, {0, 7, 14, 15});
    EXPECT_EQ(PixelsOf(RunKernel("Equalize", grey)), (Pixels{0, 86, 132, 255}));
    EXPECT_EQ(PixelsOf(RunKernel("Equalize", few, {{&P::FilterEqualizeShadow, 10}})), (Pixels{0, 6, 14, 15}));
    ExpectDefinition("Equalize", {{Kind::Color, Kind::Alpha, Kind::Grey}},
                     ByPixel([](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
                         const Color color = DibGetPixel(from, x, y);
                         const int32_t r = RedOf(color), g = GreenOf(color), b = BlueOf(color), m = std::max({r, g, b});
                         const int32_t S = context.FilterEqualizeShadow;
                         const int32_t H = std::max(context.FilterEqualizeHightlight, S - 1);
                         const int32_t d = m < S ? -((S - m) >> 1) : m > H ? (m - H) >> 1 : 0;
                         return PackColor(ClampByte(r + d), ClampByte(g + d), ClampByte(b + d));
                     }));
}

TEST(Normalize, StretchesBetweenTheOutermostPercents) {
    // Levels 50 and 200 have the weighted greys 49 and 198; the table is 254 * (level - 49) / 149 between them.
    const LockedDib two = MakePicture(3, 1, 24, {0x323232, 0xC8C8C8, 0x646464});
    EXPECT_EQ(PixelsOf(RunKernel("Normalize", two)), (Pixels{0x010101, 0xFFFFFF, 0x565656}));
    // 1 of 200 pixels is below the percent that is cut: the lone black one does not hold the scale open.
    Pixels pixels(200, 0x808080);
    pixels[7] = 0x000000;
    for (size_t i = 100; i < 200; i++) pixels[i] = 0xFFFFFF;
    const LockedDib crowd = MakePicture(20, 10, 24, pixels);
    const Pixels result = PixelsOf(RunKernel("Normalize", crowd));
    EXPECT_EQ(result[7], 0x000000u);
    EXPECT_EQ(result[8], 0x010101u) << "level 128 has weighted grey 127, the new black";
    EXPECT_EQ(result[199], 0xFEFEFEu);
}

TEST(Normalize, FollowsItsHistogram) {
    ExpectDefinition("Normalize", {{Kind::Color, Kind::Alpha}},
                     [](const ReadView &source, const FilterContext &context) {
                         int32_t counts[256] = {}, low = 0, high = 255;
                         const Pixels pixels = PixelsOf(source);
                         for (Color pixel : pixels) counts[WeightedGrey(pixel)]++;
                         for (size_t cut : {pixels.size() / 100, size_t{0}}) {
                             const auto most = static_cast<int32_t>(cut);
                             low = 0, high = 255;
                             for (int32_t sum = counts[0]; sum <= most && low < 255;) sum += counts[++low];
                             for (int32_t sum = counts[255]; sum <= most && high > 0;) sum += counts[--high];
                             if (low != high) break;
                         }
                         return ByChannel([=](auto read, const FilterContext &, int32_t x, int32_t y) {
                             const int32_t level = read(x, y);
                             if (level < low || level > high) return level < low ? 0 : 255;
                             return low == high ? level : 254 * (level - low) / (high - low);
                         })(source, context);
                     });
}

TEST(Normalize, OneGreyLevelStays) {
    for (uint32_t level : {0u, 77u, 255u}) {
        const LockedDib flat = MakePicture(4, 3, 24, Pixels(12, level * 0x010101));
        const uint32_t grey = static_cast<uint32_t>(WeightedGrey(level * 0x010101));
        const uint32_t wanted = level > grey ? 0xFFFFFF : level * 0x010101;
        EXPECT_EQ(PixelsOf(RunKernel("Normalize", flat)), Pixels(12, wanted)) << level;
    }
}

namespace {

/// The first of the brightest pixels, or the paper, becomes white.
LockedDib SlowWhiteBalance(const ReadView &source, const FilterContext &context) {
    Color reference = 0;
    for (Color pixel : PixelsOf(source))
        if (WeightedGrey(pixel) > WeightedGrey(reference)) reference = pixel;
    if (context.FilterWhiteBalancePaper) reference = context.paperColor;
    return ByPixel([reference](const ReadView &from, const FilterContext &, int32_t x, int32_t y) {
        uint32_t moved = 0;
        for (int32_t shift = 0; shift < 24; shift += 8) {
            const uint32_t channel = DibGetPixel(from, x, y) >> shift & 255;
            moved |= std::min(channel + 255 - (reference >> shift & 255), 255u) << shift;
        }
        return moved;
    })(source, context);
}

} // namespace

TEST(WhiteBalance, TheReferenceBecomesWhite) {
    ExpectDefinition("White Balance", {}, SlowWhiteBalance);
    // The greys are 128, 198 and 198: the first of the two brightest counts.
    const LockedDib picture = MakePicture(3, 1, 24, {0x6464C8, 0xC8C8C8, 0xC8C8C9}), black = MakePicture(2, 2, 24);
    EXPECT_EQ(PixelsOf(RunKernel("White Balance", picture)), (Pixels{0x9B9BFF, 0xFFFFFF, 0xFFFFFF}));
    EXPECT_EQ(PixelsOf(RunKernel("White Balance", black)), Pixels(4, 0xFFFFFF));
}

namespace {

/// Photo Fine-tune with one step switched on.
Pixels FineTune(const Pixels &pixels, NumberField enable, NumberField value, int32_t amount) {
    const LockedDib picture = MakePicture(static_cast<int32_t>(pixels.size()), 1, 24, pixels);
    return PixelsOf(RunKernel("Photo Fine-tune", picture, {{enable, 1}, {value, amount}}));
}

} // namespace

TEST(PhotoFineTune, NothingOnGivesACopy) {
    const LockedDib picture = RandomPicture(9, 9, kModeTrueColor, 3);
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", picture), picture));
    std::vector<Setting> steps;
    for (NumberField enable :
         {&P::FilterPhotoAdjEnableTemp, &P::FilterPhotoAdjEnableTint, &P::FilterPhotoAdjEnableSat,
          &P::FilterPhotoAdjEnableCont, &P::FilterPhotoAdjEnableBright, &P::FilterPhotoAdjEnableShadow})
        steps.push_back({enable, 1});
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", picture, steps), picture)) << "neutral values are no steps";
}

TEST(PhotoFineTune, StepsFollowTheirRules) {
    // The weight of a tone is (sin + 1) / 2 of its angle in the band, the largest shift 128 levels.
    const Pixels tones = {0x050A14, 0x414650, 0x5F646E, 0x737882, 0x9196A0, 0xB9BEC8, 0xEBF0FA};
    struct Band {
        NumberField enable, value;
        int32_t amount;
        Pixels shifted;
    };
    const Band bands[] = {
        {&P::FilterPhotoAdjEnableHighlight,
         &P::FilterPhotoAdjHighlight,
         200,
         {0x050A14, 0x414650, 0x5F646E, 0x737882, 0x9A9FA9, 0xF0F5FF, 0xF0F5FF}},
        {&P::FilterPhotoAdjEnableHighlight,
         &P::FilterPhotoAdjHighlight,
         0,
         {0x050A14, 0x414650, 0x5F646E, 0x737882, 0x888D97, 0x7B808A, 0x70757F}},
        {&P::FilterPhotoAdjEnableShadow,
         &P::FilterPhotoAdjShadow,
         150,
         {0x434852, 0x5A5F69, 0x656A74, 0x737882, 0x9196A0, 0xB9BEC8, 0xEBF0FA}},
        {&P::FilterPhotoAdjEnableShadow,
         &P::FilterPhotoAdjShadow,
         0,
         {0x00050F, 0x0E131D, 0x525761, 0x737882, 0x9196A0, 0xB9BEC8, 0xEBF0FA}},
        {&P::FilterPhotoAdjEnableMidtone,
         &P::FilterPhotoAdjMidtone,
         150,
         {0x050A14, 0x434852, 0x868B95, 0xB1B6C0, 0xBEC3CD, 0xB9BEC8, 0xEBF0FA}},
        {&P::FilterPhotoAdjEnableMidtone,
         &P::FilterPhotoAdjMidtone,
         0,
         {0x050A14, 0x3D424C, 0x10151F, 0x00050F, 0x363B45, 0xB9BEC8, 0xEBF0FA}},
    };
    for (const Band &band : bands) EXPECT_EQ(FineTune(tones, band.enable, band.value, band.amount), band.shifted);
    EXPECT_EQ(FineTune({0x000000, 0xFF0A80}, &P::FilterPhotoAdjEnableBright, &P::FilterPhotoAdjBright, 137),
              (Pixels{0x0A0A0A, 0xFF148A}));
    EXPECT_EQ(FineTune({0x000000, 0x808080, 0xFFFFFF}, &P::FilterPhotoAdjEnableCont, &P::FilterPhotoAdjCont, 127),
              (Pixels{0x000000, 0x808080, 0xFFFFFF}));
    // A step of 256 / 110 from -73.
    EXPECT_EQ(FineTune({0x646464, 0x1E1E1E, 0xC8C8C8}, &P::FilterPhotoAdjEnableCont, &P::FilterPhotoAdjCont, 200),
              (Pixels{0x9F9F9F, 0x000000, 0xFFFFFF}));
    EXPECT_EQ(FineTune({0x3264C8, 0x64C832}, &P::FilterPhotoAdjEnableTint, &P::FilterPhotoAdjTint, 120),
              (Pixels{0x3175C8, 0x56D524}));
    // Grey has no hue: warming it by 100 moves red to 228 and blue to 28, then the lightness comes back to 128.
    EXPECT_EQ(FineTune({0x808080}, &P::FilterPhotoAdjEnableTemp, &P::FilterPhotoAdjTemp, 1000), (Pixels{0x1B80E4}));
    EXPECT_EQ(FineTune({0x3264C8}, &P::FilterPhotoAdjEnableSat, &P::FilterPhotoAdjSat, 0), (Pixels{0xC8C8C8}));
}

TEST(PhotoFineTune, StepsRunInTheirOrder) {
    const Setting steps[][2] = {
        {{&P::FilterPhotoAdjNormalize, 1}, {&P::FilterPhotoAdjNormalize, 1}},
        {{&P::FilterPhotoAdjWhitebal, 1}, {&P::FilterPhotoAdjWhitebal, 1}},
        {{&P::FilterPhotoAdjEnableTemp, 1}, {&P::FilterPhotoAdjTemp, 3100}},
        {{&P::FilterPhotoAdjEnableTint, 1}, {&P::FilterPhotoAdjTint, 71}},
        {{&P::FilterPhotoAdjEnableSat, 1}, {&P::FilterPhotoAdjSat, 140}},
        {{&P::FilterPhotoAdjEnableCont, 1}, {&P::FilterPhotoAdjCont, 170}},
        {{&P::FilterPhotoAdjEnableBright, 1}, {&P::FilterPhotoAdjBright, 100}},
        {{&P::FilterPhotoAdjEnableHighlight, 1}, {&P::FilterPhotoAdjHighlight, 40}},
        {{&P::FilterPhotoAdjEnableShadow, 1}, {&P::FilterPhotoAdjShadow, 160}},
        {{&P::FilterPhotoAdjEnableMidtone, 1}, {&P::FilterPhotoAdjMidtone, 20}},
    };
    const LockedDib source = RandomPicture(17, 9, kModeTrueColor, 6);
    LockedDib expected(DibClone(source));
    std::vector<Setting> all;
    for (const auto &step : steps) {
        expected = RunKernel("Photo Fine-tune", expected, {step[0], step[1]});
        all.insert(all.end(), {step[0], step[1]});
    }
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", source, all), expected));
}

TEST(PhotoFineTune, TonesOutsideTheBandKeepTheirAlpha) {
    const LockedDib picture = MakePicture(2, 1, 32, {0x80404040, 0x80C0C8D2});
    EXPECT_EQ(PixelsOf(RunKernel("Photo Fine-tune", picture,
                                 {{&P::FilterPhotoAdjEnableHighlight, 1}, {&P::FilterPhotoAdjHighlight, 200}})),
              (Pixels{0x80404040, 0xEDF5FF}));
}

TEST(PhotoFineTune, WhiteBalanceTakesThePictureWhateverThatFilterIsSetTo) {
    FilterContext context = MakeContext();
    context.FilterPhotoAdjWhitebal = context.FilterWhiteBalancePaper = 1;
    context.paperColor = 0x000000;
    const LockedDib picture = MakePicture(1, 1, 24, {0xC8C8C8});
    EXPECT_EQ(PixelsOf(RunKernel("Photo Fine-tune", picture, context)), (Pixels{0xFFFFFF}));
}

} // namespace lmf::testing
