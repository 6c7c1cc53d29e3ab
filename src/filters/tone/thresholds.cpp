// Black Threshold and White Threshold: pixels darker than the level become black, pixels brighter than the level become
// white; a pixel at exactly the level stays. With "Antialias" the work is done at four times the size.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/scale/resample.h"

namespace lmf {

static constexpr PageControl kBlackThresholdPage[] = {
    Slider(260, "Threshold:", &P::FilterBlackThresholdLevel, {24, 160}),
    CheckBox(261, "Antialias", &P::FilterBlackAntialias),
};

static constexpr PageControl kWhiteThresholdPage[] = {
    Slider(1070, "Threshold:", &P::FilterWhiteThresholdLevel, {64, 250}),
    CheckBox(1071, "Antialias", &P::FilterWhiteAntiAlias),
};

LMF_MULTIVERSION
static void BlackRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, int32_t level) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t kept = WeightedGrey(from[i + 2], from[i + 1], from[i]) < level ? 0 : 0xFF;
        to[i] = static_cast<uint8_t>(from[i] & kept);
        to[i + 1] = static_cast<uint8_t>(from[i + 1] & kept);
        to[i + 2] = static_cast<uint8_t>(from[i + 2] & kept);
    }
}

LMF_MULTIVERSION
static void WhiteRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, int32_t level) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t added = WeightedGrey(from[i + 2], from[i + 1], from[i]) <= level ? 0 : 0xFF;
        to[i] = static_cast<uint8_t>(from[i] | added);
        to[i + 1] = static_cast<uint8_t>(from[i + 1] | added);
        to[i + 2] = static_cast<uint8_t>(from[i + 2] | added);
    }
}

/// Depths other than 24 are compared by their raw pixel value.
static DibHandle MapBlack(const ReadView &source, int32_t level) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapPixels(
        pass, [level](uint32_t value) { return int64_t{value} < level ? 0 : value; },
        [level](uint8_t *to, const uint8_t *from, size_t width) { BlackRow(to, from, width, level); });
    return pass.Finish();
}

static DibHandle MapWhite(const ReadView &source, int32_t level) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapPixels(
        pass, [level](uint32_t value) { return int64_t{value} <= level ? value : 255; },
        [level](uint8_t *to, const uint8_t *from, size_t width) { WhiteRow(to, from, width, level); });
    return pass.Finish();
}

/// Runs `map` at 400 percent of the size and comes back.
static DibHandle MapEnlarged(const ReadView &source, int32_t level, DibHandle (*map)(const ReadView &, int32_t)) {
    const LockedDib enlarged(DibScalePercent(source, 400, 400, kWindowAutomatic));
    if (!enlarged) return nullptr;
    const LockedDib mapped(map(enlarged, level));
    return mapped ? DibScalePercent(mapped, 25, 25, kWindowAutomatic) : nullptr;
}

static DibHandle BlackThresholdKernel(const ReadView &source, FilterContext &context) {
    const int32_t level = context.FilterBlackThresholdLevel;
    return context.FilterBlackAntialias ? MapEnlarged(source, level, MapBlack) : MapBlack(source, level);
}

static DibHandle WhiteThresholdKernel(const ReadView &source, FilterContext &context) {
    const int32_t level = context.FilterWhiteThresholdLevel;
    return context.FilterWhiteAntiAlias ? MapEnlarged(source, level, MapWhite) : MapWhite(source, level);
}

extern constexpr Filter kBlackThreshold = MakeFilter<kBlackThresholdPage>(BlackThresholdKernel);
extern constexpr Filter kWhiteThreshold = MakeFilter<kWhiteThresholdPage>(WhiteThresholdKernel);

} // namespace lmf
