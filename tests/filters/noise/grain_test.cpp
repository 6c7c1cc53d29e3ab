// Add noise and Film Grain against slow references that draw one number at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/random.h"
#include "filters/neighbourhood/gaussian.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

double U() {
    return static_cast<double>(NextRandom() & 32767) / 32767.0;
}

int32_t SlowSample(int32_t a, int32_t type) {
    const double level = a;
    double u = U(), v = 0;
    if (u == 0) u = 1.0;
    if (type == 1) {
        const double s = u <= 1e-5 ? 255.0 : std::sqrt(-2 * std::log(u));
        const int32_t q = (NextRandom() & 32767) / 32767;
        v = std::cos(q * 6.283185307179586) * (level * 0.5 * s) + level;
    } else if (type == 2) {
        v = u < 0.05 ? 0 : u >= 0.95 ? 255 : level;
    } else if (type == 3 && u > 0.5) {
        const double w = 1 - u;
        v = w <= 5e-6 ? level + 255 : level - std::log(2 * w) * 10.0;
    } else if (type == 3) {
        v = u <= 1e-5 ? level - 255 : level + std::log(2 * u) * 10.0;
    } else if (type == 4) {
        const double end = std::exp(level * -0.05);
        int32_t count = 0;
        while (u > end) {
            u = u * U();
            count++;
        }
        v = count / 0.05;
    } else {
        const double c = std::sqrt(-2 * std::log(u)), t = U() * 6.283185307179586;
        v = std::cos(t) * c * (4 * std::sqrt(level)) + level + std::sin(t) * c * 20.0;
    }
    if (v < 0) return 0;
    return v > 255 ? 255 : static_cast<int32_t>(std::trunc(v + 0.5));
}

DibOwner SlowAddNoise(DibHandle picture, const FilterContext &context) {
    DibOwner result(DibClone(picture));
    DibLock lock(result.handle);
    const int32_t a = context.FilterNoiseLevel, type = context.FilterNoiseType,
                  bytes = context.mode == kModeGrey ? 1 : 3;
    for (int32_t y = 0; y < lock.view.height; y++) {
        uint8_t *byte = lock.view.MemoryRow(y);
        for (int32_t x = 0; x < lock.view.width; x++) {
            int32_t sample = SlowSample(a, type);
            for (int32_t i = 0; i < bytes; i++, byte++) {
                if (i > 0 && context.FilterNoiseColour != 0) sample = SlowSample(a, type);
                *byte = static_cast<uint8_t>(std::clamp(*byte + sample - a / 2, 0, 255));
            }
        }
    }
    lock.Unlock();
    return result;
}

DibOwner SlowFilmGrain(DibHandle picture, const FilterContext &context) {
    DibLock from(picture);
    const int32_t width = from.view.width, height = from.view.height;
    DibOwner grain = MakePicture(width, height, 24), result = MakePicture(width, height, from.view.bits);
    SeedRandom(static_cast<uint32_t>(context.FilterFilmgrainSeed));
    DibLock lock(grain.handle);
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            const int32_t m = context.FilterFilmgrainStrength * 127 / 100, n = (NextRandom() % m + 128) & 255;
            DibSetPixel(lock.image, x, y, static_cast<uint32_t>(n) * 0x010101);
        }
    }
    lock.Unlock();
    grain.Reset(GaussianBlurDirect(grain.handle, 42 - context.FilterFilmgrainBlur, 40));
    DibLock blurred(grain.handle), to(result.handle);
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            const Color color = DibGetPixel(from.image, x, y), noise = DibGetPixel(blurred.image, x, y);
            const auto sum = [](int32_t a, int32_t b) {
                return static_cast<uint32_t>(std::clamp(a + b - 128, 0, 255));
            };
            DibSetPixel(to.image, x, y,
                        PackColor(sum(RedOf(color), RedOf(noise)), sum(GreenOf(color), GreenOf(noise)),
                                  sum(BlueOf(color), BlueOf(noise))));
        }
    }
    to.Unlock();
    return result;
}

} // namespace

TEST(AddNoise, AgreesWithOneSampleAtATime) {
    // The largest picture is for the rare draws at the ends of the range.
    constexpr int32_t kSizes[][2] = {{1, 1}, {1, 5}, {7, 1}, {33, 12}, {3000, 2}, {1000, 400}};
    uint32_t seed = 1;
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        for (int32_t type = 0; type < 5; type++) {
            for (const auto &size : kSizes) {
                DibOwner picture = RandomPicture(size[0], size[1], mode, ++seed);
                FilterContext context = MakeContext(mode);
                context.FilterNoiseType = type;
                context.FilterNoiseLevel = static_cast<int32_t>(1 + seed * 7 % 32);
                context.FilterNoiseColour = static_cast<int32_t>(seed & 1);
                SeedRandom(seed);
                DibOwner result = RunKernel("Add noise", picture.handle, &context);
                const int32_t next = NextRandom();
                SeedRandom(seed);
                ASSERT_TRUE(SamePicture(result.handle, SlowAddNoise(picture.handle, context).handle))
                    << type << " " << seed;
                ASSERT_EQ(next, NextRandom()) << "the stream must go on after the last sample, type " << type;
            }
        }
    }
}

TEST(AddNoise, ImpulseIsBlackWhiteOrTheIntensity) {
    DibOwner picture = MakePicture(200, 200, 8, std::vector<uint32_t>(200 * 200, 100));
    FilterContext context = MakeContext(kModeGrey);
    context.FilterNoiseType = 2;
    context.FilterNoiseLevel = 20;
    std::vector<uint32_t> pixels = PixelsOf(RunKernel("Add noise", picture.handle, &context).handle);
    const auto share = [&](uint32_t level) { return std::count(pixels.begin(), pixels.end(), level) / 40000.0; };
    EXPECT_NEAR(share(90), 0.05, 0.01);
    EXPECT_NEAR(share(255), 0.05, 0.01);
    EXPECT_NEAR(share(110), 0.90, 0.02);
}

TEST(AddNoise, OtherModesGiveABlankPicture) {
    DibOwner picture = RandomPicture(9, 9, kModePalette, 3);
    EXPECT_EQ(PixelsOf(RunKernel("Add noise", picture.handle).handle), std::vector<uint32_t>(81, 0));
}

TEST(FilmGrain, AgreesWithOnePixelAtATime) {
    constexpr int32_t kSizes[][2] = {{1, 1}, {1, 6}, {5, 2}, {40, 31}, {200, 190}, {5000, 3}};
    uint32_t seed = 1;
    for (const auto &size : kSizes) {
        for (uint32_t bits : {24u, 32u}) {
            uint32_t state = ++seed;
            std::vector<uint32_t> pixels(static_cast<size_t>(size[0]) * static_cast<size_t>(size[1]));
            for (uint32_t &pixel : pixels) pixel = TestRandom(&state);
            DibOwner picture = MakePicture(size[0], size[1], bits, pixels);
            FilterContext context = MakeContext();
            context.FilterFilmgrainBlur = static_cast<int32_t>(seed * 11 % 41);
            context.FilterFilmgrainStrength = static_cast<int32_t>(20 + seed * 37 % 80);
            context.FilterFilmgrainSeed = static_cast<int32_t>(1000 + seed * 999);
            context.FilterFilmgrainNormalize = 0;
            DibOwner plain = RunKernel("Film Grain", picture.handle, &context);
            ASSERT_TRUE(SamePicture(plain.handle, SlowFilmGrain(picture.handle, context).handle))
                << size[0] << " " << bits;
            context.FilterFilmgrainNormalize = 1;
            DibOwner stretched = RunKernel("Normalize", plain.handle);
            DibOwner result = RunKernel("Film Grain", picture.handle, &context);
            ASSERT_TRUE(SamePicture(result.handle, (stretched ? stretched : plain).handle)) << size[0] << " " << bits;
        }
    }
}

} // namespace lmf::testing
