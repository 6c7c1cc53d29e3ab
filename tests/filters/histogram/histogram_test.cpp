// Equalize, Normalize, White Balance and Photo Fine-tune, against worked examples and a slow reading of each rule.
#include "engine/page.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(Equalize, PushesTonesAwayFromTheTwoLevels) {
    // (128 - 100) / 2 = 14 down; (201 - 128) / 2 = 36 up, clipped at 255; 128 itself stays.
    const LockedDib colors = MakePicture(3, 1, 24, {0x640A05, 0xC9C8C8, 0x808080});
    const LockedDib few = MakePicture(4, 1, 4, {0, 7, 14, 15});
    EXPECT_EQ(PixelsOf(RunKernel("Equalize", colors)), (Pixels{0x560000, 0xEDECEC, 0x808080}));
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
    // 1 of 200 pixels is below the percent that is cut: the lone black one does not hold the scale open, and level 128
    // has the weighted grey 127, the new black.
    Pixels pixels(200, 0x808080), expected(200, 0x010101);
    pixels[7] = expected[7] = 0x000000;
    std::fill(pixels.begin() + 100, pixels.end(), 0xFFFFFF);
    std::fill(expected.begin() + 100, expected.end(), 0xFEFEFE);
    EXPECT_EQ(PixelsOf(RunKernel("Normalize", MakePicture(20, 10, 24, pixels))), expected);
}

TEST(Normalize, FollowsItsHistogram) {
    const auto stretched = [](const ReadView &source, const FilterContext &context) {
        int32_t counts[256] = {}, low = 0, high = 255;
        const Pixels pixels = PixelsOf(source);
        for (Color pixel : pixels) counts[WeightedGrey(pixel)]++;
        for (int32_t most : {static_cast<int32_t>(pixels.size() / 100), 0}) {
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
    };
    ExpectDefinition("Normalize", {{Kind::Color, Kind::Alpha}}, stretched);
}

TEST(Normalize, OneGreyLevelStays) {
    // Level 77 has the weighted grey 76, the white of its scale.
    for (const auto &[level, wanted] : {std::pair{0u, 0u}, {0x4D4D4Du, 0xFFFFFFu}, {0xFFFFFFu, 0xFFFFFFu}})
        EXPECT_EQ(PixelsOf(RunKernel("Normalize", MakePicture(4, 3, 24, Pixels(12, level)))), Pixels(12, wanted));
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

TEST(PhotoFineTune, NothingOnGivesACopy) {
    const LockedDib picture = RandomPicture(9, 9, kModeTrueColor, 3);
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", picture), picture));
    std::vector<Setting> steps;
    for (NumberField enable : {&P::FilterPhotoAdjEnableTemp, &P::FilterPhotoAdjEnableTint, &P::FilterPhotoAdjEnableSat,
                               &P::FilterPhotoAdjEnableCont, &P::FilterPhotoAdjEnableBright})
        steps.push_back({enable, 1});
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", picture, steps), picture)) << "neutral values are no steps";
}

TEST(PhotoFineTune, StepsFollowTheirRulesAndTheirOrder) {
    const Setting steps[][2] = {
        {{&P::FilterPhotoAdjEnableTemp, 1}, {&P::FilterPhotoAdjTemp, 3100}},
        {{&P::FilterPhotoAdjEnableTemp, 1}, {&P::FilterPhotoAdjTemp, 9000}},
        {{&P::FilterPhotoAdjEnableTint, 1}, {&P::FilterPhotoAdjTint, 71}},
        {{&P::FilterPhotoAdjEnableSat, 1}, {&P::FilterPhotoAdjSat, 140}},
        {{&P::FilterPhotoAdjEnableCont, 1}, {&P::FilterPhotoAdjCont, 170}},
        {{&P::FilterPhotoAdjEnableBright, 1}, {&P::FilterPhotoAdjBright, 100}},
        {{&P::FilterPhotoAdjEnableHighlight, 1}, {&P::FilterPhotoAdjHighlight, 40}},
        {{&P::FilterPhotoAdjEnableHighlight, 1}, {&P::FilterPhotoAdjHighlight, 200}},
        {{&P::FilterPhotoAdjEnableShadow, 1}, {&P::FilterPhotoAdjShadow, 160}},
        {{&P::FilterPhotoAdjEnableShadow, 1}, {&P::FilterPhotoAdjShadow, 0}},
        {{&P::FilterPhotoAdjEnableMidtone, 1}, {&P::FilterPhotoAdjMidtone, 20}},
        {{&P::FilterPhotoAdjEnableMidtone, 1}, {&P::FilterPhotoAdjMidtone, 150}},
    };
    // What another program made of the same rules: the tones, then the result of each step.
    static constexpr Color kTones[][7] = {
        {0x050A14, 0x414650, 0x5F646E, 0x9196A0, 0xB9BEC8, 0x3264C8, 0xF5FAF0},
        {0x000319, 0x11447F, 0x2F629D, 0x6294CF, 0x8ABCF7, 0x0260F7, 0xEBFDFF},
        {0x190200, 0x913E00, 0xC36609, 0xF4983C, 0xFFCA82, 0x966363, 0xFFFEEB},
        {0x060019, 0x4D315F, 0x6B507C, 0x9C87A9, 0xC4B0D0, 0x3145C8, 0xFAEFF8},
        {0x000614, 0x3B4250, 0x59606E, 0x8B92A0, 0xB3BAC8, 0x0042C8, 0xF3FAEC},
        {0x000000, 0x363E4D, 0x646B7A, 0xAFB6C5, 0xEBF3FF, 0x206BFF, 0xFFFFFF},
        {0x000000, 0x262B35, 0x444953, 0x767B85, 0x9EA3AD, 0x1749AD, 0xDADFD5},
        {0x050A14, 0x414650, 0x5F646E, 0x8C919B, 0x9499A3, 0x3264C8, 0xAAAFA5},
        {0x050A14, 0x414650, 0x5F646E, 0x9A9FA9, 0xF0F5FF, 0x3264C8, 0xFAFFF5},
        {0x50555F, 0x5F646E, 0x676C76, 0x9196A0, 0xB9BEC8, 0x3264C8, 0xF5FAF0},
        {0x00050F, 0x0E131D, 0x525761, 0x9196A0, 0xB9BEC8, 0x3264C8, 0xF5FAF0},
        {0x050A14, 0x3E434D, 0x20252F, 0x484D57, 0xB9BEC8, 0x003296, 0xF5FAF0},
        {0x050A14, 0x434852, 0x868B95, 0xBEC3CD, 0xB9BEC8, 0x699BFF, 0xF5FAF0},
    };
    const LockedDib tones = MakePicture(7, 1, 24, Pixels(kTones[0], kTones[0] + 7));
    const LockedDib source = RandomPicture(17, 9, kModeTrueColor, 6);
    std::vector<Setting> all = {{&P::FilterPhotoAdjNormalize, 1}, {&P::FilterPhotoAdjWhitebal, 1}};
    LockedDib expected = RunKernel("White Balance", RunKernel("Normalize", source));
    for (size_t i = 0; i < std::size(steps); i++) {
        const std::vector<Setting> step(steps[i], steps[i] + 2);
        EXPECT_EQ(PixelsOf(RunKernel("Photo Fine-tune", tones, step)), Pixels(kTones[i + 1], kTones[i + 1] + 7)) << i;
        if (i > 0 && step[0].field == steps[i - 1][0].field) continue;
        expected = RunKernel("Photo Fine-tune", expected, step);
        all.insert(all.end(), steps[i], steps[i] + 2);
    }
    EXPECT_TRUE(SamePicture(RunKernel("Photo Fine-tune", source, all), expected));
}

TEST(PhotoFineTune, TonesOutsideTheBandKeepTheirAlpha) {
    const LockedDib picture = MakePicture(2, 1, 32, {0x80404040, 0x80C0C8D2});
    const std::vector<Setting> lit = {{&P::FilterPhotoAdjEnableHighlight, 1}, {&P::FilterPhotoAdjHighlight, 200}};
    EXPECT_EQ(PixelsOf(RunKernel("Photo Fine-tune", picture, lit)), (Pixels{0x80404040, 0xEDF5FF}));
}

TEST(PhotoFineTune, WhiteBalanceTakesThePictureWhateverThatFilterIsSetTo) {
    FilterContext context = ContextWith({{&P::FilterPhotoAdjWhitebal, 1}, {&P::FilterWhiteBalancePaper, 1}});
    context.paperColor = 0x000000;
    EXPECT_EQ(PixelsOf(RunKernel("Photo Fine-tune", MakePicture(1, 1, 24, {0xC8C8C8}), context)), Pixels{0xFFFFFF});
}

} // namespace lmf::testing
