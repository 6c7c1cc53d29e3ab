#include "image/color/dither.h"
#include "image/color/nearest_color.h"
#include "image/color/palette.h"
#include "image/core/dib_ops.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

Palette768 RandomPalette(uint32_t seed, uint32_t colors, uint32_t low, uint32_t range) {
    Palette768 palette{};
    for (uint32_t i = 0; i < colors * 3; i++)
        palette.rgb[i] = static_cast<uint8_t>(low + TestRandom(&seed) / 64 % range);
    return palette;
}

/// Error diffusion to colours, share by share.
Pixels SlowColorDiffusion(const ReadView &from, const Palette768 &palette, uint32_t bits) {
    const int32_t width = from.width, height = from.height;
    Pixels result(static_cast<size_t>(width * height));
    std::vector<int32_t> current(static_cast<size_t>(3 * width + 256)), next(current.size());
    for (int32_t y = height - 1; y >= 0; y--) {
        for (int32_t i = 0; i < 3 * width; i++)
            current[static_cast<size_t>(i)] += DibGetPixel(from, i / 3, y) >> (8 * (i % 3)) & 255;
        for (int32_t x = 0; x < width; x++) {
            int32_t *here = &current[static_cast<size_t>(3 * x)], *above = &next[static_cast<size_t>(3 * x)];
            int32_t rgb[3];
            for (int32_t c = 0; c < 3; c++) rgb[c] = std::clamp(here[c], 0, 255);
            const int32_t i = PaletteNearest(rgb[0], rgb[1], rgb[2], palette, 1 << bits);
            result[static_cast<size_t>(y * width + x)] = static_cast<uint32_t>(i);
            for (int32_t c = 0; c < 3; c++) {
                const int32_t error = rgb[c] - palette.rgb[i * 3 + c];
                if (x + 1 < width) here[3 + c] += (error * 7) >> 4;
                if (y == 0) continue;
                if (x > 1) above[c - 3] += (error * 3) >> 4;
                if (x + 1 < width) above[3 + c] += error >> 4;
                above[c] += (error * 5) >> 4;
            }
        }
        current = next;
        std::fill(next.begin(), next.end(), 0);
    }
    return result;
}

/// Error diffusion to black and white, share by share, on rows with their padding.
Pixels SlowMonoDiffusion(const ReadView &from, int32_t brightness, int32_t contrast) {
    const int32_t width = from.width, height = from.height, stride = (width + 3) / 4 * 4;
    std::vector<int32_t> bytes(static_cast<size_t>(stride * height));
    const auto at = [&](int32_t x, int32_t y) -> int32_t & { return bytes[static_cast<size_t>(y * stride + x)]; };
    int32_t table[256], low = 255, high = 0;
    double value = brightness - contrast;
    for (int32_t &entry : table) {
        entry = value > 254 ? 254 : value < 1 ? 1 : static_cast<int32_t>(value);
        value += 256.0 / (256 - 2 * contrast);
    }
    Palette768 palette;
    DibReadPalette(from, &palette);
    ForEachPixel(from, [&](int32_t x, int32_t y) {
        const uint32_t pixel = DibGetPixel(from, x, height - 1 - y);
        at(x, y) = WeightedGrey(from.bits > 8 ? pixel : palette.At(pixel));
        low = std::min(low, at(x, y));
        high = std::max(high, at(x, y));
    });
    const auto send = [&](int32_t x, int32_t y, int32_t share) { at(x, y) = std::clamp(at(x, y) + share, 0, 255); };
    Pixels result(static_cast<size_t>(width * height));
    ForEachPixel(from, [&](int32_t x, int32_t y) {
        const int32_t q = table[at(x, y)];
        const bool white = q > (high + low) / 2;
        result[static_cast<size_t>((height - 1 - y) * width + x)] = white;
        const int32_t unit = (q - (white ? high : low)) >> 4;
        if (y + 1 < height) {
            if (x + 1 < width) send(x + 1, y + 1, unit);
            if (x != 1) send(x - 1, y + 1, 3 * unit);
            send(x, y + 1, 5 * unit);
        }
        if (x + 1 < width) send(x + 1, y, 7 * unit);
    });
    return result;
}

constexpr MonoTone kTone = {25, 25};
constexpr int32_t kSizes[][2] = {{1, 1}, {1, 6}, {2, 5}, {3, 4}, {4, 3}, {8, 9}, {9, 1}, {67, 21}, {64, 20}};

} // namespace

TEST(NearestFinder, FindsWhatAScanFinds) {
    const Palette768 palettes[] = {RandomPalette(1, 256, 0, 256), RandomPalette(2, 256, 100, 12),
                                   RandomPalette(3, 16, 0, 256), RandomPalette(4, 30, 40, 3), GreyRamp()};
    for (const Palette768 &palette : palettes) {
        for (int32_t count : {256, 128, 4, 1}) {
            NearestFinder finder(palette, count);
            ASSERT_TRUE(finder);
            uint32_t state = 77;
            for (int32_t i = 0; i < 40000; i++) {
                // Half of the colours come from the neighbourhood of the dense palettes.
                const uint32_t random = TestRandom(&state) >> 3;
                const uint32_t mask = i % 2 != 0 ? 255 : 15, base = i % 2 != 0 ? 0 : 96;
                const Color color = (random & mask * 0x010101) + base * 0x010101;
                const int32_t red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
                const int32_t nearest = PaletteNearest(red, green, blue, palette, count);
                ASSERT_EQ(finder.Find(red, green, blue), uint32_t(nearest)) << std::hex << color << " of " << count;
            }
        }
    }
}

TEST(ErrorDiffuse, AgreesWithDiffusionShareByShare) {
    for (const auto &size : kSizes) {
        for (const auto &[kind, seed] :
             {std::pair{Kind::Color, 3u}, {Kind::Grey, 3u}, {Kind::Grey, 5u}, {Kind::Palette, 5u}}) {
            SCOPED_TRACE(::testing::Message() << size[0] << " x " << size[1] << " seed " << seed);
            const LockedDib picture = RandomKind(kind, size[0], size[1], seed), rgb(ExpandToRgb(picture));
            for (const auto &tone : {kTone, MonoTone{0, 0}, MonoTone{90, -40}, MonoTone{10, 128}, MonoTone{1, 200}}) {
                const LockedDib mono(ErrorDiffuse(picture, GreyRamp(), 1, tone));
                ASSERT_EQ(PixelsOf(mono), SlowMonoDiffusion(picture, tone.brightness, tone.contrast));
            }
            for (uint32_t bits : {2u, 4u, 6u, 8u}) {
                const Palette768 palette = RandomPalette(bits, 1 << bits, 30, 180);
                LockedDib result(ErrorDiffuse(picture, palette, bits, kTone));
                ASSERT_EQ(PixelsOf(result), SlowColorDiffusion(rgb, palette, bits)) << bits;
                EXPECT_EQ(result.View().bits, bits <= 4 ? 4u : 8u);
            }
        }
    }
    EXPECT_EQ(ErrorDiffuse(RandomPicture(3, 3, kModeMono, 1), GreyRamp(), 1, kTone), nullptr);
}

TEST(RemapNearest, TakesTheNearestEntryOrTheBrightSide) {
    const Palette768 palette = RandomPalette(9, 64, 0, 256);
    const LockedDib color = RandomPicture(33, 7, kModeTrueColor, 2);
    ExpectPixels(LockedDib(RemapNearest(color, palette, 6)), [&](int32_t x, int32_t y) {
        const Color pixel = DibGetPixel(color, x, y);
        return uint32_t(PaletteNearest(RedOf(pixel), GreenOf(pixel), BlueOf(pixel), palette, 64));
    });
    ExpectPixels(LockedDib(RemapNearest(color, palette, 1)),
                 [&](int32_t x, int32_t y) { return uint32_t(WeightedGrey(DibGetPixel(color, x, y)) >= 129); });

    // Indexed sources go through their own table, 1-bit ones to white and black whatever they hold.
    const Palette768 few{{250, 250, 250, 10, 10, 10, 128, 129, 129, 130, 132, 133}};
    const LockedDib indexed = MakePalettePicture(4, 1, 4, few, {0, 1, 2, 3});
    const LockedDib mono = MakePalettePicture(2, 1, 1, palette, {0, 1});
    EXPECT_EQ(PixelsOf(LockedDib(RemapNearest(indexed, few, 2))), (Pixels{0, 1, 2, 3}));
    EXPECT_EQ(PixelsOf(LockedDib(RemapNearest(indexed, few, 1))), (Pixels{1, 0, 0, 1}));
    EXPECT_EQ(PixelsOf(LockedDib(RemapNearest(mono, few, 2))), (Pixels{1, 0}));
    EXPECT_EQ(PixelsOf(LockedDib(RemapNearest(mono, few, 1))), (Pixels{0, 1}));
}

TEST(ThresholdToMono, IsStrictlyAbove) {
    LockedDib grey = MakePicture(9, 1, 8, {0, 127, 128, 129, 255, 128, 129, 128, 130});
    EXPECT_EQ(PixelsOf(LockedDib(ThresholdToMono(grey, 128))), (Pixels{0, 0, 0, 1, 1, 0, 1, 0, 1}));
    EXPECT_EQ(ThresholdToMono(RandomPicture(3, 3, kModeMono, 1), 128), nullptr);
}

TEST(Bayer, ComparesWithTheRecursiveMatrix) {
    // The bits of x ^ y and of y in turn, the lowest ones first.
    const auto threshold = [](int32_t x, int32_t y) {
        int32_t value = 0;
        for (int32_t bit = 0; bit < 3; bit++)
            value |= ((x ^ y) >> bit & 1) << (5 - 2 * bit) | (y >> bit & 1) << (4 - 2 * bit);
        return 4 * value;
    };
    for (ImageMode mode : {kModeTrueColor, kModePalette, kModeMono}) {
        const LockedDib picture = RandomPicture(19, 17, mode, 4), rgb(ExpandToRgb(picture));
        const LockedDib mono(BayerMono(picture)), eight(BayerEight(picture)), many(BayerRgb332(picture));
        EXPECT_EQ(mono.View().bits * 10000 + eight.View().bits * 100 + many.View().bits, 10408u);
        ForEachPixel(rgb, [&](int32_t x, int32_t y) {
            const Color color = DibGetPixel(rgb, x, y);
            const int32_t r = RedOf(color), g = GreenOf(color), b = BlueOf(color), t = threshold(x, y);
            ASSERT_EQ(DibGetPixel(mono, x, y), WeightedGrey(color) > t);
            ASSERT_EQ(DibGetPixel(eight, x, y), static_cast<uint32_t>((r > t) | (g > t) << 1 | (b > t) << 2));
            const auto moved = [&](int32_t c) { return c - ((c - threshold(y, x)) >> 2); };
            ASSERT_EQ(DibGetPixel(many, x, y), uint32_t((moved(r) & 224) | (moved(g) >> 3 & 28) | moved(b) >> 6));
        });
        for (uint32_t i = 0; i < 8; i++) {
            EXPECT_EQ(PaletteOf(eight).At(i), PackColor(i & 1, i >> 1 & 1, i >> 2) * 255);
            const uint32_t level = i == 7 ? 255 : 36 * i;
            EXPECT_EQ(PaletteOf(many).At(32 * i + 4 * i + i % 4), PackColor(level, level, i % 4 * 85));
        }
    }
}

} // namespace lmf::testing
