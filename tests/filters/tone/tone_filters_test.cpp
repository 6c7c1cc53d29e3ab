#include <cmath>

#include "engine/page.h"
#include "image/color/tone_table.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(ToneFilters, WorkedExamples) {
    struct Case {
        const char *filter;
        std::vector<Setting> settings;
        Color from, to;
    };
    const Case cases[] = {
        // 0 + 128 * 256 / 254 = 129.007, and 257 is cut at 255.
        {"Contrast and Brightness", {}, 0xFF8000, 0xFF8100},
        {"Contrast and Brightness", {{&P::FilterContrast, 127}, {&P::FilterBrightness, 127}}, 0xFF8001, 0xFF8001},
        // A step of 256 from -128.
        {"Contrast and Brightness", {{&P::FilterContrast, 255}, {&P::FilterBrightness, 127}}, 0x020100, 0xFF8000},
        {"Color and Intensity", {{&P::FilterRed, 138}, {&P::FilterIntensity, 118}}, 0x0520F8, 0x0016F8},
        {"Invert Colors", {}, 0x0102FF, 0xFEFD00},
        {"Gamma", {{&P::FilterGammaLevel, 200}}, 0xFF8000, 0xFF4000},
        {"Gamma", {{&P::FilterGammaLevel, 50}}, 0xFF4000, 0xFF8000},
        {"Posterize", {}, 0x7FC0FF, 0x40C0C0},
        {"Posterize", {{&P::FilterPosterizeSteps, 8}}, 0x7FC0FF, 0x7FC0FF},
        {"Solarize", {}, 0x7F8000, 0x8080FF},
        {"Invert Channels", {}, 0x0033C8, 0x7E33C8},
        {"Invert Channels",
         {{&P::FilterInvertChannelsGreen, 0}, {&P::FilterInvertChannelsBlue, 0}},
         0x07C833,
         0xF83733},
        {"Sigmoidal Contrast", {}, 0x803200, 0xA34201},
        {"Sigmoidal Contrast", {{&P::FilterSigcontSharpen, 0}}, 0xC86432, 0xA64C27},
        // Factor 0.3: the ends are 15 and 60, so red goes 200, 107.5, 83.75.
        {"Moonlight", {}, 0x3264C8, 0x2E3A53},
        // Tones 165, 150 and, lifted to a seventh of the threshold, 12.
        {"Sepia", {}, 0x000000, 0x033136},
        // 180 + 180 degrees lie past the end and take the last sector with its fraction 0.
        {"Hue Saturation Brightness", {{&P::FilterHSBHue, 360}}, 0xFFFF00, 0xFF00FF},
    };
    for (const Case &example : cases) {
        const LockedDib source = MakePicture(1, 1, 24, {example.from});
        EXPECT_EQ(PixelsOf(RunKernel(example.filter, source, example.settings)).at(0), example.to)
            << example.filter << std::hex << " of " << example.from;
    }
}

/// The definition that makes each colour rule(color, context).
template <typename Rule>
static Definition ByColor(Rule rule) {
    return ByPixel([rule](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) -> Color {
        return rule(DibGetPixel(from, x, y), context);
    });
}

static Color TurnedHue(Color color, const FilterContext &context) {
    const float r = RedOf(color) / 255.0f, g = GreenOf(color) / 255.0f, b = BlueOf(color) / 255.0f;
    const float most = std::max({r, g, b}), range = most - std::min({r, g, b});
    if (most == 0) return 0;
    const float d = range == 0 ? 1 : range;
    float h = most == r ? (g - b) / d : most == g ? 2 + (b - r) / d : 4 + (r - g) / d;
    h *= 60;
    if (h < 0) h += 360;
    h += static_cast<float>(context.FilterHSBHue) - 180;
    const float s = std::min(1.0f, range / most * (2 * (static_cast<float>(context.FilterHSBSaturation) / 200)));
    const float v = std::min(1.0f, most * (2 * (static_cast<float>(context.FilterHSBBrightness) / 200)));
    const auto i = static_cast<int32_t>(std::floor(h / 60));
    const float f = h / 60 - static_cast<float>(i);
    const float p = (1 - s) * v, q = (1 - f * s) * v, u = (1 - (1 - f) * s) * v;
    const float rows[6][3] = {{v, u, p}, {q, v, p}, {p, v, u}, {p, q, v}, {u, p, v}, {v, p, q}};
    const float grey[3] = {v, v, v};
    const float *row = s == 0 ? grey : rows[i >= 0 && i < 5 ? i : 5];
    return PackColor(static_cast<uint32_t>(row[0] * 255), static_cast<uint32_t>(row[1] * 255),
                     static_cast<uint32_t>(row[2] * 255));
}

static Color Moonlit(Color color, const FilterContext &context) {
    const float f = static_cast<float>(context.FilterMoonlightFactor) / 100.0f;
    const int32_t channels[3] = {RedOf(color), GreenOf(color), BlueOf(color)};
    const auto [least, most] = std::minmax({channels[0], channels[1], channels[2]});
    const float low = static_cast<float>(least) * f, high = static_cast<float>(most) * f;
    uint32_t moonlit[3];
    for (int i = 0; i < 3; i++) {
        const auto x1 = static_cast<float>(0.5 * (static_cast<float>(channels[i]) + low));
        moonlit[i] = static_cast<uint32_t>(static_cast<float>(0.5 * (x1 + high)));
    }
    return PackColor(moonlit[0], moonlit[1], moonlit[2]);
}

static Color Browned(Color color, const FilterContext &context) {
    ToneTable contrast;
    BuildContrastTable(context.FilterSepiaContrast - 127, context.FilterSepiaBrightness - 127, &contrast);
    const auto T = static_cast<float>(context.FilterSepiaThreshold), B = static_cast<float>(context.FilterSepiaBlend);
    const int32_t r = contrast.at[RedOf(color)], g = contrast.at[GreenOf(color)], b = contrast.at[BlueOf(color)];
    const auto linear = [](int32_t v) {
        return v <= 10.314300250662438
                   ? static_cast<float>(v) / 12.92f
                   : static_cast<float>(std::pow((v * 0.00392156862745098 + 0.055) / 1.055, 2.4) * 255.0);
    };
    const float light = 0.586811f * linear(g) + 0.298839f * linear(r) + 0.11435f * linear(b);
    const auto I = static_cast<int32_t>(std::min(light, 255.0f));
    double tones[3] = {I > T ? 255.0 : I + 255 - T, I > T * 7.0 / 6.0 ? 255.0 : (I + 255) - T * 7.0 / 6.0,
                       T / 6.0 > I ? 0.0 : I - T / 6.0};
    uint32_t out[3];
    for (int i = 0; i < 3; i++) {
        auto tone = static_cast<int32_t>(tones[i]);
        if (i > 0 && static_cast<float>(T / 7.0) > static_cast<float>(tone)) tone = static_cast<int32_t>(T / 7.0);
        const float plain = static_cast<float>(WeightedGrey(r, g, b)) * (100 - B) / 100;
        out[i] = static_cast<uint32_t>(std::min(static_cast<float>(tone) * B / 100 + plain, 255.0f));
    }
    return PackColor(out[0], out[1], out[2]);
}

TEST(ToneFilters, RowsMatchSinglePixels) {
    ExpectDefinition("Hue Saturation Brightness", {}, ByColor(TurnedHue));
    ExpectDefinition("Moonlight", {}, ByColor(Moonlit));
    ExpectDefinition("Sepia", {}, ByColor(Browned));
    ExpectDefinition("Black Threshold", {.fixed = {{&P::FilterBlackAntialias, 0}}},
                     ByColor([](Color color, const FilterContext &context) -> Color {
                         return WeightedGrey(color) < context.FilterBlackThresholdLevel ? 0 : color;
                     }));
    ExpectDefinition("White Threshold", {.fixed = {{&P::FilterWhiteAntiAlias, 0}}},
                     ByColor([](Color color, const FilterContext &context) -> Color {
                         return WeightedGrey(color) > context.FilterWhiteThresholdLevel ? 0xFFFFFF : color;
                     }));
    ExpectDefinition(
        "Invert Colors", {{Kind::Color, Kind::Alpha, Kind::Grey}},
        ByChannel([](auto read, const FilterContext &, int32_t x, int32_t y) { return 255 - read(x, y); }));
}

TEST(ToneFilters, PalettePicturesChangeTheirColorsAndGreyOnesTheirPixels) {
    const std::vector<Setting> settings = {
        {&P::FilterGammaLevel, 150}, {&P::FilterGreen, 90}, {&P::FilterContrast, 170}};
    for (const std::string filter :
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
    EXPECT_EQ(PixelsOf(RunKernel("White Threshold", deep, {{&P::FilterWhiteThresholdLevel, 250}})), Pixels{255});
    EXPECT_EQ(PixelsOf(RunKernel("Gamma", deep)), Pixels{0x00646464});
}

TEST(ToneFilters, AntialiasedThresholdsKeepTheSize) {
    for (int32_t width = 1; width < 7; width++) {
        const LockedDib source(DibCreateSolid(width, 3, 0x969696));
        EXPECT_TRUE(SamePicture(RunKernel("Black Threshold", source, {{&P::FilterBlackAntialias, 1}}), source));
        EXPECT_TRUE(SamePicture(RunKernel("White Threshold", source, {{&P::FilterWhiteAntiAlias, 1}}), source));
    }
}

} // namespace lmf::testing
