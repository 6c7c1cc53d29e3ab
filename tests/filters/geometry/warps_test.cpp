// Each warp against its definition, pixel by pixel with plain calls of the mathematics library.
#include <cmath>
#include <numbers>

#include "common/random.h"
#include "image/geometry/warp_sample.h"
#include "support/reference.h"

namespace lmf::testing {
namespace {

constexpr double kPi = std::numbers::pi;

uint32_t SampleByDefinition(const ReadView &from, double x, double y, uint32_t paper) {
    const int32_t width = from.width, height = from.height;
    const double u = x + 0.5, v = y + 0.5;
    if (u < -1 || u >= width || v < -1 || v >= height) return paper;
    const double fx = u - std::floor(u), fy = v - std::floor(v);
    const auto read = [&](bool right, bool below) {
        const bool inX = right ? width > u + 1 : u >= 0, inY = below ? height > v + 1 : v >= 0;
        return inX && inY ? DibGetPixel(from, static_cast<int32_t>(u + right), static_cast<int32_t>(v + below)) : paper;
    };
    const uint32_t p00 = read(false, false), p10 = read(true, false), p01 = read(false, true), p11 = read(true, true);
    const auto mix = [&](int shift) {
        const auto of = [shift](uint32_t pixel) -> double { return pixel >> shift & 255; };
        const double mixed = (of(p10) * fx + of(p00) * (1 - fx)) * (1 - fy) + (of(p01) * (1 - fx) + of(p11) * fx) * fy;
        return static_cast<uint32_t>(mixed + 0.5) << shift;
    };
    return mix(0) | mix(8) | mix(16);
}

uint32_t Swirled(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const double width = from.width, height = from.height, cx = width * 0.5, cy = height * 0.5;
    const double radius = std::max(cx, cy);
    const double xScale = width < height ? height / width : 1, yScale = width > height ? width / height : 1;
    const double dx = (x - cx) * xScale, dy = (y - cy) * yScale, square = dx * dx + dy * dy;
    if (square >= radius * radius) return DibGetPixel(from, x, y);
    const double t = 1 - std::sqrt(square) / radius;
    const double angle = (context.FilterSwirlDegrees - 1440) * kPi / 180 * (t * t);
    const uint32_t alpha = DibGetPixel(from, x, y) & 0xFF000000;
    return alpha | SampleByDefinition(from, (std::cos(angle) * dx - std::sin(angle) * dy) / xScale + cx,
                                      (std::sin(angle) * dx + std::cos(angle) * dy) / yScale + cy, context.paperColor);
}

/// Amounts in parts of the unit; negative ones push outward.
Definition Imploding(NumberField radiusField, NumberField xOff, NumberField yOff, double unit) {
    return ByPixel([=](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
        const double width = from.width, height = from.height, amount = context.*radiusField / unit;
        const double cx = context.*xOff / 100.0 * width, cy = context.*yOff / 100.0 * height;
        const double radius = width < height ? cy : cx;
        const double xScale = width < height ? height / width : 1, yScale = height < width ? width / height : 1;
        const double dx = (x - cx) * xScale, dy = (y - cy) * yScale, square = dx * dx + dy * dy;
        if (square >= radius * radius) return DibGetPixel(from, x, y);
        const double factor = square == 0 ? 1.0 : std::pow(std::sin(std::sqrt(square) * (kPi / 2) / radius), amount);
        return SampleByDefinition(from, factor * dx / xScale + cx, factor * dy / yScale + cy, context.paperColor);
    });
}

uint32_t Rippled(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t width = from.width, height = from.height;
    const double cx = width * (context.FilterWaterCenterX - 100) / 100 + width * 0.5;
    const double cy = height * (context.FilterWaterCenterY - 100) / 100 + height * 0.5;
    const double distance = std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy));
    const double wavelength = context.FilterWaterWavelength / 100.0, phase = context.FilterWaterPhase / 100.0;
    double shift = std::sin(distance / wavelength * (2 * kPi) + phase) * (context.FilterWaterAmplitude / 100.0);
    const double reach = std::sqrt((height - cy) * (height - cy) + (width - cx) * (width - cx));
    if (context.FilterWaterDissipate)
        shift = shift * (1 - distance / (reach + 0.0001)) * (context.FilterWaterEnergy / 100.0);
    const double sx = std::clamp<double>(x + shift, 0, width - 1), sy = std::clamp<double>(y + shift, 0, height - 1);
    const auto fx = static_cast<float>(std::fmod(sx, 1.0)), fy = static_cast<float>(std::fmod(sy, 1.0));
    uint32_t result = 0;
    for (int shiftBits = 0; shiftBits < 32; shiftBits += 8) {
        const auto read = [&](int right, int below) {
            const int32_t ix = static_cast<int32_t>(sx) + right, iy = static_cast<int32_t>(sy) + below;
            const uint32_t pixel = ix < width && iy < height ? DibGetPixel(from, ix, iy) : 0;
            return static_cast<float>(pixel >> shiftBits & 255);
        };
        const float mixed =
            (read(0, 0) * (1 - fx) + read(1, 0) * fx) * (1 - fy) + (read(0, 1) * (1 - fx) + read(1, 1) * fx) * fy;
        result |= static_cast<uint32_t>(mixed) << shiftBits;
    }
    return result;
}

uint32_t LensCorrected(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const double width = from.width, height = from.height;
    const double strength = context.FilterLensCorrectStr == 0 ? 0.00001 : context.FilterLensCorrectStr / 1000.0;
    const double zoom = context.FilterLensCorrectZoom / 100.0 + 1.0;
    const double dx = x - width * 0.5, dy = y - height * 0.5;
    const double r = std::sqrt(dx * dx + dy * dy) / (std::sqrt(width * width + height * height) / strength);
    const double theta = r == 0 ? 1.0 : std::atan(r) / r;
    const auto sx = static_cast<int32_t>(theta * dx * zoom + width * 0.5);
    const auto sy = static_cast<int32_t>(theta * dy * zoom + height * 0.5);
    const bool inside = sx >= 0 && sx < from.width && sy >= 0 && sy < from.height;
    return inside ? DibGetPixel(from, sx, sy) : context.paperColor;
}

/// Across the picture, or down it as if it were turned to the left.
uint32_t Waved(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const bool down = context.FilterWavesHorizontal != 0;
    const int32_t line = down ? from.width - 1 - x : y, place = down ? y : x;
    const double wave = std::sin(line * context.FilterWavesFrequency / 10.0) * context.FilterWavesIntensity;
    const int32_t moved = place + static_cast<int32_t>(wave);
    if (moved < 0 || moved >= (down ? from.height : from.width)) return DibGetPixel(from, x, y);
    return down ? DibGetPixel(from, x, moved) : DibGetPixel(from, moved, y);
}

/// One draw after the other, in the order of the pixels.
LockedDib Scattered(const ReadView &from, const FilterContext &context) {
    SeedRandom(static_cast<uint32_t>(context.time));
    LockedDib scattered(DibClone(from));
    const int32_t aperture = context.FilterWaterDropsAperture;
    ForEachPixel(from, [&](int32_t x, int32_t y) {
        const int32_t dx = NextRandom() % aperture - aperture / 2;
        const int32_t dy = NextRandom() % aperture - aperture / 2;
        DibSetPixel(scattered.View(), x, y, DibGetPixel(from, x + dx, y + dy));
    });
    return scattered;
}

} // namespace

TEST(Warps, AgreeWithTheirDefinitions) {
    const std::vector<Kind> bytes = {Kind::Color, Kind::Alpha, Kind::Grey};
    const std::vector<Kind> all = {Kind::Color, Kind::Alpha, Kind::Grey, Kind::Palette, Kind::Mono};
    ExpectDefinition("Swirl", {bytes}, ByPixel(Swirled));
    ExpectDefinition("Implode", {bytes},
                     Imploding(&P::FilterImplodeRadius, &P::FilterImplodeXOff, &P::FilterImplodeYOff, 100));
    ExpectDefinition("Explode", {bytes},
                     Imploding(&P::FilterExplodeRadius, &P::FilterExplodeXOff, &P::FilterExplodeYOff, -100));
    ExpectDefinition("Ripple", {bytes}, ByPixel(Rippled));
    ExpectDefinition("Lens Correction", {all}, ByPixel(LensCorrected));
    ExpectDefinition("Waves", {all}, ByPixel(Waved));
    ExpectDefinition("Water Drops", {all}, Scattered);
}

TEST(WaterDrops, FollowsTheTimeOfTheCall) {
    const LockedDib source = RandomPicture(40, 40, kModeTrueColor, 1);
    FilterContext context = MakeContext();
    const LockedDib first = RunKernel("Water Drops", source, context);
    EXPECT_TRUE(SamePicture(first, RunKernel("Water Drops", source, context)));
    context.time++;
    EXPECT_FALSE(SamePicture(first, RunKernel("Water Drops", source, context)));
}

TEST(WarpSample, MixesNeighboursAndBackground) {
    const LockedDib lock = MakePicture(2, 2, 8, {10, 20, 30, 41});
    for (int32_t i = 0; i < 17 * 17; i++) {
        const double x = i % 17 / 4.0 - 2, y = i / 17 / 4.0 - 2;
        EXPECT_EQ(WarpSampleBilinear(lock, x, y, 200) & 255, SampleByDefinition(lock, x, y, 200) & 255) << i;
    }
    EXPECT_EQ(WarpSampleBilinear(lock, 0, 0, 200) & 255, 25u) << "25.25, the middle of all four";
}

} // namespace lmf::testing
