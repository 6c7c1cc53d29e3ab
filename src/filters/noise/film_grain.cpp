// Film Grain: adds blurred grey noise to the picture. Density sets how fine the grain is (a higher one blurs less),
// Impact how strong, and the seed which grain it is: a seed gives the same grain every time. The noise lightens the
// picture; Normalize, on at first, stretches the tones back afterwards.
#include "common/multiversion.h"
#include "common/random.h"
#include "engine/filter.h"
#include "filters/histogram/normalize.h"
#include "image/blur/gaussian.h"
#include "image/core/bgr_rows.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1140, "Density:", &P::FilterFilmgrainBlur, {0, 40}),
    Slider(1141, "Impact:", &P::FilterFilmgrainStrength, {20, 99}),
    NumberEdit(1142, "Random seed:", &P::FilterFilmgrainSeed, {1000, 32760}),
    CheckBox(1143, "Normalize", &P::FilterFilmgrainNormalize),
};

/// Depth of the grain's blur, in tenths of a pixel.
static constexpr int32_t kBlurDepth = 40;
static constexpr size_t kBatch = 4096;

/// 128 and the remainder of each draw by `range`, as a byte.
LMF_MULTIVERSION
static void GrainOfDraws(uint8_t *__restrict grain, const uint16_t *__restrict draws, size_t count, uint32_t range) {
    // A product in place of the division; draw * range is below 2^32, so the quotient is exact.
    const uint64_t inverse = (uint64_t{1} << 32) / range + 1;
    for (size_t i = 0; i < count; i++) {
        const auto quotient = static_cast<uint32_t>(draws[i] * inverse >> 32);
        grain[i] = static_cast<uint8_t>(draws[i] - quotient * range + 128);
    }
}

/// The unblurred noise as a grey picture, drawn from the top row down; null on failure.
[[nodiscard]] static DibHandle MakeGrain(int32_t width, int32_t height, uint32_t range) {
    LockedDib grain(DibCreateGrey(width, height));
    const WriteView &to = grain.View();
    if (!grain) return nullptr;
    const auto columns = static_cast<size_t>(width);
    for (int32_t y = 0; y < height; y++) {
        for (size_t x = 0; x < columns; x += kBatch) {
            uint16_t draws[kBatch];
            const size_t count = std::min(kBatch, columns - x);
            NextRandoms(draws, count);
            GrainOfDraws(to.Row(y) + x, draws, count, range);
        }
    }
    return grain.Release();
}

/// Adds grain - 128 to the three bytes of each pixel.
LMF_MULTIVERSION
static void AddGrain(uint8_t *__restrict pixels, const uint8_t *__restrict grain, size_t count) {
    for (size_t x = 0; x < count; x++) {
        for (size_t channel = 0; channel < 3; channel++) {
            uint8_t &level = pixels[3 * x + channel];
            level = ClampByte(level + grain[x] - 128);
        }
    }
}

static DibHandle FilmGrainKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t width = pass.from.width, height = pass.from.height;
    const int64_t range = std::clamp<int64_t>(int64_t{context.FilterFilmgrainStrength} * 127 / 100, 1, kRandomMax + 1);
    SeedRandom(static_cast<uint32_t>(context.FilterFilmgrainSeed));
    LockedDib grain(MakeGrain(width, height, static_cast<uint32_t>(range)));
    if (!grain) return nullptr;
    grain = LockedDib(GaussianBlurDirect(grain, 42 - context.FilterFilmgrainBlur, kBlurDepth));
    const BlockArray<uint8_t> row(static_cast<uint64_t>(width) * 3);
    if (!grain || !row) return nullptr;
    for (int32_t y = 0; y < height; y++) {
        ReadBgrRow(pass.from, y, row.data);
        AddGrain(row.data, grain.View().Row(y), static_cast<size_t>(width));
        WriteBgrRow(pass.to, y, row.data);
    }
    grain = LockedDib();
    if (context.FilterFilmgrainNormalize != 0) {
        if (DibHandle normalized = Normalize(pass.to)) return normalized;
    }
    return pass.Finish();
}

extern constexpr Filter kFilmGrain = MakeFilter<kPage>(FilmGrainKernel);

} // namespace lmf
