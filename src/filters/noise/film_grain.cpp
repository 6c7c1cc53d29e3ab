// Film Grain: adds blurred grey noise to the picture. Density sets how fine the grain is (a higher one blurs less),
// Impact how strong, and the seed which grain it is: a seed gives the same grain every time. The noise lightens the
// picture; Normalize, on at first, stretches the tones back afterwards.
#include "common/multiversion.h"
#include "common/random.h"
#include "engine/filter.h"
#include "filters/histogram/normalize.h"
#include "image/blur/gaussian.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1140, "Density:", &P::FilterFilmgrainBlur, {0, 40}).Help("How fine the grain is; low values blur it more."),
    Slider(1141, "Impact:", &P::FilterFilmgrainStrength, {20, 99})
        .In(Unit::Percent)
        .Help("How strongly the grain shows."),
    NumberEdit(1142, "Random seed:", &P::FilterFilmgrainSeed, {1000, 32760})
        .In(Unit::Seed)
        .Help("Which grain it is: the same number gives the same grain every time."),
    CheckBox(1143, "Normalize", &P::FilterFilmgrainNormalize)
        .Help("Stretches the tones over the full range afterwards, since grain lightens the picture."),
};

/// Depth of the grain's blur, and its radius at density 0, in tenths of a pixel.
constexpr int32_t kBlurDepth = 40, kWidestBlur = 42;
constexpr size_t kBatch = 4096;

/// 128 and the remainder of each draw by `range`, as a byte.
LMF_MULTIVERSION
void GrainOfDraws(uint8_t *__restrict grain, const uint16_t *__restrict draws, size_t count, uint32_t range) {
    // A product in place of the division; draw * range is below 2^32, so the quotient is exact.
    const uint64_t inverse = (uint64_t{1} << 32) / range + 1;
    for (size_t i = 0; i < count; i++) {
        const auto quotient = static_cast<uint32_t>(draws[i] * inverse >> 32);
        grain[i] = static_cast<uint8_t>(draws[i] - quotient * range + 128);
    }
}

/// The unblurred noise as a grey picture, drawn from the top row down; null on failure.
[[nodiscard]] DibHandle MakeGrain(int32_t width, int32_t height, uint32_t range) {
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
void AddGrain(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict grain, size_t count) {
    for (size_t x = 0; x < count; x++)
        for (size_t c = 0; c < 3; c++) to[3 * x + c] = ClampByte(from[3 * x + c] + grain[x] - 128);
}

DibHandle FilmGrainKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    SeedRandom(static_cast<uint32_t>(context.FilterFilmgrainSeed));
    LockedDib grain(
        MakeGrain(source.width, source.height, static_cast<uint32_t>(context.FilterFilmgrainStrength * 127 / 100)));
    if (!grain) return nullptr;
    grain = LockedDib(GaussianBlurDirect(grain, kWidestBlur - context.FilterFilmgrainBlur, kBlurDepth));
    if (!grain) return nullptr;
    for (int32_t y = 0; y < source.height; y++)
        AddGrain(pass.To().Row(y), pass.From().Row(y), grain.View().Row(y), static_cast<size_t>(source.width));
    grain = LockedDib();
    LockedDib plain(pass.Finish());
    if (plain && context.FilterFilmgrainNormalize != 0) {
        if (DibHandle normalized = Normalize(plain)) return normalized;
    }
    return plain.Release();
}

} // namespace

extern constexpr Filter kFilmGrain = MakeFilter<kPage>(FilmGrainKernel);

} // namespace lmf
