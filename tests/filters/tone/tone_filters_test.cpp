#include <cmath>

#include "engine/page.h"
#include "image/color/tone_table.h"
#include "image/scale/resample.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(ToneFilters, WorkedExamples) {
    const std::tuple<const char *, std::vector<Setting>, Color, Color> cases[] = {
        // 0 + 128 * 256 / 254 = 129.007, and 257 is cut at 255.
        {"Contrast and Brightness", {}, 0xFF8000, 0xFF8100},
        // A step of 256 from -128.
        {"Contrast and Brightness", {{&P::FilterContrast, 255}, {&P::FilterBrightness, 127}}, 0x020100, 0xFF8000},
        {"Color and Intensity", {{&P::FilterRed, 138}, {&P::FilterIntensity, 118}}, 0x0520F8, 0x0016F8},
        {"Gamma", {{&P::FilterGammaLevel, 200}}, 0xFF8000, 0xFF4000},
        {"Posterize", {}, 0x7FC0FF, 0x40C0C0},
        {"Solarize", {}, 0x7F8000, 0x8080FF},
        {"Invert Channels", {}, 0x0033C8, 0x7E33C8},
        {"Sigmoidal Contrast", {}, 0x803200, 0xA34201},
        {"Sigmoidal Contrast", {{&P::FilterSigcontSharpen, 0}}, 0xC86432, 0xA64C27},
        // Factor 0.3: the ends are 15 and 60, so red goes 200, 107.5, 83.75.
        {"Moonlight", {}, 0x3264C8, 0x2E3A53},
        // Tones 165, 150 and, lifted to a seventh of the threshold, 12.
        {"Sepia", {}, 0x000000, 0x033136},
        // 180 + 180 degrees lie past the end and take the last sector with its fraction 0.
        {"Hue Saturation Brightness", {{&P::FilterHSBHue, 360}}, 0xFFFF00, 0xFF00FF},
    };
    for (const auto &[filter, settings, from, to] : cases)
        EXPECT_EQ(PixelsOf(RunKernel(filter, MakePicture(1, 1, 24, {from}), settings)), Pixels{to}) << filter << from;
}

namespace {

/// The definition that makes each colour rule(color, context).
template <typename Rule>
Definition ByColor(Rule rule) {
    return ByPixel([rule](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) -> Color {
        return rule(DibGetPixel(from, x, y), context);
    });
}

/// The definition that makes each value of a channel rule(value, context).
template <typename Rule>
Definition ByValue(Rule rule) {
    return ByChannel(
        [rule](auto read, const FilterContext &context, int32_t x, int32_t y) { return rule(read(x, y), context); });
}

Color TurnedHue(Color color, const P &page) {
    const float r = RedOf(color) / 255.0f, g = GreenOf(color) / 255.0f, b = BlueOf(color) / 255.0f;
    const float most = std::max({r, g, b}), range = most - std::min({r, g, b});
    if (most == 0) return 0;
    const float d = range == 0 ? 1 : range;
    float h = most == r ? (g - b) / d : most == g ? 2 + (b - r) / d : 4 + (r - g) / d;
    h *= 60;
    if (h < 0) h += 360;
    h += static_cast<float>(page.FilterHSBHue) - 180;
    const float s = std::min(1.0f, range / most * (2 * (static_cast<float>(page.FilterHSBSaturation) / 200)));
    const float v = std::min(1.0f, most * (2 * (static_cast<float>(page.FilterHSBBrightness) / 200)));
    const auto i = static_cast<int32_t>(std::floor(h / 60));
    const float f = h / 60 - static_cast<float>(i);
    const float p = (1 - s) * v, q = (1 - f * s) * v, u = (1 - (1 - f) * s) * v;
    const float rows[6][3] = {{v, u, p}, {q, v, p}, {p, v, u}, {p, q, v}, {u, p, v}, {v, p, q}};
    const float grey[3] = {v, v, v};
    const float *row = s == 0 ? grey : rows[i >= 0 && i < 5 ? i : 5];
    return PackColor(static_cast<uint32_t>(row[0] * 255), static_cast<uint32_t>(row[1] * 255),
                     static_cast<uint32_t>(row[2] * 255));
}

Color Moonlit(Color color, const P &page) {
    const float f = static_cast<float>(page.FilterMoonlightFactor) / 100.0f;
    const auto [least, most] = std::minmax({RedOf(color), GreenOf(color), BlueOf(color)});
    const float low = static_cast<float>(least) * f, high = static_cast<float>(most) * f;
    const auto moonlit = [=](uint8_t channel) {
        const auto x1 = static_cast<float>(0.5 * (static_cast<float>(channel) + low));
        return static_cast<uint32_t>(static_cast<float>(0.5 * (x1 + high)));
    };
    return PackColor(moonlit(RedOf(color)), moonlit(GreenOf(color)), moonlit(BlueOf(color)));
}

Color Browned(Color color, const P &page) {
    const ToneTable contrast = BuildContrastTable(page.FilterSepiaContrast, page.FilterSepiaBrightness);
    const auto T = static_cast<float>(page.FilterSepiaThreshold), B = static_cast<float>(page.FilterSepiaBlend);
    const int32_t r = contrast.at[RedOf(color)], g = contrast.at[GreenOf(color)], b = contrast.at[BlueOf(color)];
    const auto linear = [](int32_t v) {
        return v <= 10.314300250662438
                   ? static_cast<float>(v) / 12.92f
                   : static_cast<float>(std::pow((v * 0.00392156862745098 + 0.055) / 1.055, 2.4) * 255.0);
    };
    const float light = 0.586811f * linear(g) + 0.298839f * linear(r) + 0.11435f * linear(b);
    const auto I = static_cast<int32_t>(std::min(light, 255.0f));
    const auto raised = static_cast<float>(I + 255), level = static_cast<float>(I);
    const double T7 = T * 7.0 / 6.0, T6 = T / 6.0;
    const double tones[] = {level > T ? 255.0 : raised - T, level > T7 ? 255.0 : raised - T7,
                            T6 > level ? 0 : level - T6};
    uint32_t out[3];
    for (int i = 0; i < 3; i++) {
        auto tone = static_cast<int32_t>(tones[i]);
        if (i > 0 && static_cast<float>(T / 7.0) > static_cast<float>(tone)) tone = static_cast<int32_t>(T / 7.0);
        const float plain = static_cast<float>(WeightedGrey(r, g, b)) * (100 - B) / 100;
        out[i] = static_cast<uint32_t>(std::min(static_cast<float>(tone) * B / 100 + plain, 255.0f));
    }
    return PackColor(out[0], out[1], out[2]);
}

int32_t OnStraightLine(int32_t value, const P &page) {
    double line = page.FilterBrightness - page.FilterContrast;
    for (int32_t i = 0; i < value; i++) line += 256 / std::max(1.0, 256.0 - 2.0 * (page.FilterContrast - 127));
    return static_cast<int32_t>(std::clamp(line, 0.0, 255.0));
}

int32_t OnPowerCurve(int32_t value, const P &page) {
    return static_cast<int32_t>(std::pow(value / 255.0, page.FilterGammaLevel / 100.0) * 255.0 + 0.5);
}

int32_t OnLogisticCurve(int32_t value, const P &page) {
    const double k = page.FilterSigcontContrast / 10.0, M = page.FilterSigcontMidpoint, a = M / 255;
    const double S0 = 1 / (std::exp(a * k) + 1), S1 = 1 / (std::exp((a - 1) * k) + 1), x = value / 255.0;
    const double y = (S1 - S0) * x + S0;
    const auto r = static_cast<float>(page.FilterSigcontSharpen != 0
                                          ? (1 / (std::exp((a - x) * k) + 1) - S0) * 255 / (S1 - S0) + 0.5
                                          : (M * (1 / 255.0) - std::log((1 - y) / y) / k) * 255);
    return r <= 0 ? 0 : r >= 255 ? 255 : static_cast<int32_t>(r + 0.5);
}

Color MixedWithNegative(Color color, const P &page) {
    const auto mixed = [](int32_t x, int32_t share) {
        const auto f = static_cast<float>(share / 255.0);
        const auto p = static_cast<float>((255 - x) / 255.0 * static_cast<float>(1.0 - f));
        return static_cast<uint32_t>((p + static_cast<float>(x / 255.0 * f)) * 255.0);
    };
    return PackColor(mixed(RedOf(color), page.FilterInvertChannelsRed),
                     mixed(GreenOf(color), page.FilterInvertChannelsGreen),
                     mixed(BlueOf(color), page.FilterInvertChannelsBlue));
}

} // namespace

TEST(ToneFilters, FollowTheirDefinitions) {
    const std::vector<Kind> deep = {Kind::Color, Kind::Alpha}, kinds = {Kind::Color, Kind::Alpha, Kind::Grey};
    const auto posterized = [](int32_t value, const P &page) {
        const int32_t step = 256 >> page.FilterPosterizeSteps;
        return value / step * step;
    };
    const auto solarized = [](int32_t v, const P &page) { return v < page.FilterSolarizeThreshold ? 255 - v : v; };
    const auto shifted = [](Color color, const P &page) {
        const int32_t all = page.FilterIntensity - 256;
        return PackColor(ClampByte(RedOf(color) + page.FilterRed + all),
                         ClampByte(GreenOf(color) + page.FilterGreen + all),
                         ClampByte(BlueOf(color) + page.FilterBlue + all));
    };
    const auto blackened = [](Color color, const P &page) -> Color {
        return WeightedGrey(color) < page.FilterBlackThresholdLevel ? 0 : color;
    };
    const auto whitened = [](Color color, const P &page) -> Color {
        return WeightedGrey(color) > page.FilterWhiteThresholdLevel ? 0xFFFFFF : color;
    };
    ExpectDefinition("Gamma", {kinds}, ByValue(OnPowerCurve));
    ExpectDefinition("Posterize", {kinds}, ByValue(posterized));
    ExpectDefinition("Solarize", {{Kind::Color, Kind::Grey}}, ByValue(solarized));
    ExpectDefinition("Contrast and Brightness", {kinds}, ByValue(OnStraightLine));
    ExpectDefinition("Sigmoidal Contrast", {deep}, ByValue(OnLogisticCurve));
    ExpectDefinition("Invert Colors", {kinds}, ByValue([](int32_t value, const P &) { return 255 - value; }));
    ExpectDefinition("Hue Saturation Brightness", {deep}, ByColor(TurnedHue));
    ExpectDefinition("Moonlight", {deep}, ByColor(Moonlit));
    ExpectDefinition("Sepia", {deep}, ByColor(Browned));
    ExpectDefinition("Invert Channels", {deep}, ByColor(MixedWithNegative));
    ExpectDefinition("Color and Intensity", {deep}, ByColor(shifted));
    ExpectDefinition("Black Threshold", {.fixed = {{&P::FilterBlackAntialias, 0}}}, ByColor(blackened));
    ExpectDefinition("White Threshold", {.fixed = {{&P::FilterWhiteAntiAlias, 0}}}, ByColor(whitened));
}

TEST(ToneFilters, PalettePicturesChangeTheirColorsAndGreyOnesTheirPixels) {
    const std::vector<Setting> settings = {
        {&P::FilterGammaLevel, 150}, {&P::FilterGreen, 90}, {&P::FilterContrast, 170}};
    for (std::string filter :
         {"Contrast and Brightness", "Gamma", "Posterize", "Color and Intensity", "Invert Colors"}) {
        const auto changed = [&](const LockedDib &picture) { return RunKernel(filter, picture, settings); };
        const LockedDib source = RandomPicture(7, 5, kModePalette, 4), result = changed(source);
        EXPECT_EQ(PixelsOf(result), PixelsOf(source)) << filter;
        const Palette768 before = PaletteOf(source), after = PaletteOf(result);
        for (uint32_t i : {0u, 200u, 255u})
            EXPECT_EQ(PixelsOf(changed(MakePicture(1, 1, 24, {before.At(i)}))), Pixels{after.At(i)}) << filter;

        const LockedDib grey = changed(MakePicture(1, 1, 8, {100}));
        EXPECT_EQ(!grey, filter == "Color and Intensity") << filter;
        if (!grey) continue;
        EXPECT_EQ(PixelsOf(grey)[0], PixelsOf(changed(MakePicture(1, 1, 24, {0x646464})))[0] & 0xFF) << filter;
        EXPECT_EQ(DibClassify(grey), kModeGrey) << filter;
    }
    const LockedDib mono = RandomPicture(13, 5, kModeMono, 7), inverted = RunKernel("Invert Colors", mono);
    EXPECT_EQ(PixelsOf(inverted), PixelsOf(mono));
    EXPECT_EQ(PaletteOf(inverted).At(0), PaletteOf(mono).At(1));
}

TEST(ToneFilters, ModesThatAFilterDoesNotKnowAreRefusedOrBlank) {
    const LockedDib mono = MakePicture(2, 1, 1, {1, 0}), deep = MakePicture(1, 1, 32, {0x80646464});
    EXPECT_FALSE(RunKernel("Color and Intensity", mono));
    EXPECT_EQ(PixelsOf(RunKernel("Solarize", mono)), (Pixels{0, 0}));
    EXPECT_EQ(PixelsOf(RunKernel("Gamma", deep)), Pixels{0x00646464});
    // Depths other than 24 are compared as they are.
    const LockedDib grey = MakePicture(4, 1, 8, {63, 64, 200, 201});
    EXPECT_EQ(PixelsOf(RunKernel("Black Threshold", grey)), (Pixels{0, 64, 200, 201}));
    EXPECT_EQ(PixelsOf(RunKernel("White Threshold", grey)), (Pixels{63, 64, 200, 255}));
    EXPECT_EQ(PixelsOf(RunKernel("Black Threshold", deep)), Pixels{0x80646464});
    EXPECT_EQ(PixelsOf(RunKernel("White Threshold", deep)), Pixels{255});
}

TEST(ToneFilters, AntialiasedThresholdsWorkAtFourTimesTheSize) {
    for (const auto &[filter, antialias] :
         {std::pair{"Black Threshold", &P::FilterBlackAntialias}, {"White Threshold", &P::FilterWhiteAntiAlias}}) {
        for (int32_t width = 1; width < 7; width++) {
            const LockedDib source = RandomPicture(width, 3, kModeTrueColor, 5);
            const LockedDib enlarged(DibScalePercent(source, 400, 400, kWindowAutomatic));
            const LockedDib changed = RunKernel(filter, enlarged, {{antialias, 0}});
            const LockedDib expected(DibScalePercent(changed, 25, 25, kWindowAutomatic));
            EXPECT_TRUE(SamePicture(RunKernel(filter, source, {{antialias, 1}}), expected));
        }
    }
}

} // namespace lmf::testing
