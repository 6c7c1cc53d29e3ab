// Add noise and Film Grain against slow references that draw one number at a time.
#include <algorithm>
#include <cmath>

#include "common/random.h"
#include "image/blur/gaussian.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

constexpr auto U = [] { return static_cast<double>(NextRandom() & 32767) / 32767.0; };

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
        for (; u > end; count++) u = u * U();
        v = count / 0.05;
    } else {
        const double c = std::sqrt(-2 * std::log(u)), t = U() * 6.283185307179586;
        v = std::cos(t) * c * (4 * std::sqrt(level)) + level + std::sin(t) * c * 20.0;
    }
    return v < 0 ? 0 : v > 255 ? 255 : static_cast<int32_t>(std::trunc(v + 0.5));
}

/// Bytes in the order of the rows in memory, blue first.
LockedDib SlowAddNoise(const ReadView &source, const FilterContext &context) {
    LockedDib result(DibClone(source));
    const WriteView &to = result.View();
    const int32_t a = context.FilterNoiseLevel, type = context.FilterNoiseType, bytes = to.bits == 8 ? 1 : 3;
    ForEachPixel(to, [&](int32_t x, int32_t y) {
        uint8_t *pixel = to.MemoryRow(y) + x * bytes;
        int32_t sample = SlowSample(a, type);
        for (int32_t i = 0; i < bytes; i++) {
            if (i > 0 && context.FilterNoiseColour != 0) sample = SlowSample(a, type);
            pixel[i] = static_cast<uint8_t>(std::clamp(pixel[i] + sample - a / 2, 0, 255));
        }
    });
    return result;
}

LockedDib SlowFilmGrain(const ReadView &source, const FilterContext &context) {
    SeedRandom(static_cast<uint32_t>(context.FilterFilmgrainSeed));
    const int32_t range = context.FilterFilmgrainStrength * 127 / 100;
    const LockedDib grain = PictureLike(MakePicture(context.width, context.height, 24), [&](int32_t, int32_t) {
        return static_cast<uint32_t>((NextRandom() % range + 128) & 255) * 0x010101;
    });
    const LockedDib noise(GaussianBlurDirect(grain, 42 - context.FilterFilmgrainBlur, 40));
    LockedDib plain = ByChannel([&](auto read, const FilterContext &, int32_t x, int32_t y) {
        return std::clamp(read(x, y) + RedOf(DibGetPixel(noise, x, y)) - 128, 0, 255);
    })(source, context);
    if (!context.FilterFilmgrainNormalize) return plain;
    LockedDib stretched = RunKernel("Normalize", plain);
    return stretched ? std::move(stretched) : std::move(plain);
}

} // namespace

TEST(AddNoise, AgreesWithOneSampleAtATime) {
    // The largest picture is for the rare draws at the ends of the range.
    Trials trials = {.kinds = {Kind::Color, Kind::Grey},
                     .sizes = {{1, 1}, {1, 5}, {7, 1}, {33, 12}, {3000, 2}, {1000, 200}},
                     .rounds = 2};
    for (int32_t type = 0; type < 5; type++) {
        trials.fixed = {{&P::FilterNoiseType, type}};
        ExpectDefinition("Add noise", trials, SlowAddNoise);
    }
    EXPECT_EQ(PixelsOf(RunKernel("Add noise", RandomPicture(9, 9, kModePalette, 3))), Pixels(81, 0));
}

TEST(FilmGrain, AgreesWithOnePixelAtATime) {
    ExpectDefinition("Film Grain", {{Kind::Color, Kind::Alpha}}, SlowFilmGrain);
}

} // namespace lmf::testing
