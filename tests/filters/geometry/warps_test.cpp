// Each warp against its definition, pixel by pixel with plain calls of the mathematics library, over random pictures
// and settings; and the few cases that can be worked out by hand.
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "common/random.h"
#include "engine/catalogue.h"
#include "filters/geometry/turns.h"
#include "filters/geometry/warp_sample.h"
#include "support/pictures.h"

namespace lmf::testing {
namespace {

constexpr double kPi = std::numbers::pi;

/// The pixel of a warped picture at (x, y).
using Definition = uint32_t (*)(const DibLock &from, const FilterContext &context, int32_t x, int32_t y);

uint32_t SampleByDefinition(const DibLock &from, double x, double y, uint32_t paper) {
    const int32_t width = from.view.width, height = from.view.height;
    const double u = x + 0.5, v = y + 0.5;
    if (u < -1 || u >= width || v < -1 || v >= height) return paper;
    const double fx = u - std::floor(u), fy = v - std::floor(v);
    const auto read = [&](bool right, bool below) {
        const bool inX = right ? width > u + 1 : u >= 0, inY = below ? height > v + 1 : v >= 0;
        return inX && inY ? DibGetPixel(from.image, static_cast<int32_t>(u + right), static_cast<int32_t>(v + below))
                          : paper;
    };
    const uint32_t p00 = read(false, false), p10 = read(true, false), p01 = read(false, true), p11 = read(true, true);
    const auto mix = [&](int shift) {
        const auto of = [shift](uint32_t pixel) -> double { return pixel >> shift & 255; };
        const double mixed = (of(p10) * fx + of(p00) * (1 - fx)) * (1 - fy) + (of(p01) * (1 - fx) + of(p11) * fx) * fy;
        return static_cast<uint32_t>(mixed + 0.5) << shift;
    };
    return mix(0) | mix(8) | mix(16);
}

uint32_t Swirled(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    const double width = from.view.width, height = from.view.height, cx = width * 0.5, cy = height * 0.5;
    const double radius = std::max(cx, cy);
    const double xScale = width < height ? height / width : 1, yScale = width > height ? width / height : 1;
    const double dx = (x - cx) * xScale, dy = (y - cy) * yScale, square = dx * dx + dy * dy;
    if (square >= radius * radius) return DibGetPixel(from.image, x, y);
    const double t = 1 - std::sqrt(square) / radius;
    const double angle = (context.FilterSwirlDegrees - 1440) * kPi / 180 * (t * t);
    const uint32_t alpha = DibGetPixel(from.image, x, y) & 0xFF000000;
    return alpha | SampleByDefinition(from, (std::cos(angle) * dx - std::sin(angle) * dy) / xScale + cx,
                                      (std::sin(angle) * dx + std::cos(angle) * dy) / yScale + cy, context.paperColor);
}

uint32_t ImplodedBy(const DibLock &from, Color paper, double amount, int32_t xOff, int32_t yOff, int32_t x, int32_t y) {
    const double width = from.view.width, height = from.view.height;
    const double cx = xOff / 100.0 * width, cy = yOff / 100.0 * height, radius = width < height ? cy : cx;
    const double xScale = width < height ? height / width : 1, yScale = height < width ? width / height : 1;
    const double dx = (x - cx) * xScale, dy = (y - cy) * yScale, square = dx * dx + dy * dy;
    if (square >= radius * radius) return DibGetPixel(from.image, x, y);
    const double factor = square == 0 ? 1.0 : std::pow(std::sin(std::sqrt(square) * (kPi / 2) / radius), amount);
    return SampleByDefinition(from, factor * dx / xScale + cx, factor * dy / yScale + cy, paper);
}

uint32_t Imploded(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    return ImplodedBy(from, context.paperColor, context.FilterImplodeRadius / 100.0, context.FilterImplodeXOff,
                      context.FilterImplodeYOff, x, y);
}

uint32_t Exploded(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    return ImplodedBy(from, context.paperColor, -context.FilterExplodeRadius / 100.0, context.FilterExplodeXOff,
                      context.FilterExplodeYOff, x, y);
}

uint32_t Rippled(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t width = from.view.width, height = from.view.height;
    const double cx = width * (context.FilterWaterCenterX - 100) / 100 + width * 0.5;
    const double cy = height * (context.FilterWaterCenterY - 100) / 100 + height * 0.5;
    const double distance = std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy));
    double shift =
        std::sin(distance / (context.FilterWaterWavelength / 100.0) * (2 * kPi) + context.FilterWaterPhase / 100.0) *
        (context.FilterWaterAmplitude / 100.0);
    const double reach = std::sqrt((height - cy) * (height - cy) + (width - cx) * (width - cx));
    if (context.FilterWaterDissipate)
        shift = shift * (1 - distance / (reach + 0.0001)) * (context.FilterWaterEnergy / 100.0);
    const double sx = std::clamp<double>(x + shift, 0, width - 1), sy = std::clamp<double>(y + shift, 0, height - 1);
    const auto fx = static_cast<float>(std::fmod(sx, 1.0)), fy = static_cast<float>(std::fmod(sy, 1.0));
    uint32_t result = 0;
    for (int shiftBits = 0; shiftBits < 32; shiftBits += 8) {
        const auto read = [&](int right, int below) {
            const int32_t ix = static_cast<int32_t>(sx) + right, iy = static_cast<int32_t>(sy) + below;
            const uint32_t pixel = ix < width && iy < height ? DibGetPixel(from.image, ix, iy) : 0;
            return static_cast<float>(pixel >> shiftBits & 255);
        };
        const float mixed =
            (read(0, 0) * (1 - fx) + read(1, 0) * fx) * (1 - fy) + (read(0, 1) * (1 - fx) + read(1, 1) * fx) * fy;
        result |= static_cast<uint32_t>(mixed) << shiftBits;
    }
    return result;
}

uint32_t LensCorrected(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    const double width = from.view.width, height = from.view.height;
    const double strength = context.FilterLensCorrectStr == 0 ? 0.00001 : context.FilterLensCorrectStr / 1000.0;
    const double zoom = context.FilterLensCorrectZoom / 100.0 + 1.0;
    const double dx = x - width * 0.5, dy = y - height * 0.5;
    const double r = std::sqrt(dx * dx + dy * dy) / (std::sqrt(width * width + height * height) / strength);
    const double theta = r == 0 ? 1.0 : std::atan(r) / r;
    const auto sx = static_cast<int32_t>(theta * dx * zoom + width * 0.5);
    const auto sy = static_cast<int32_t>(theta * dy * zoom + height * 0.5);
    const bool inside = sx >= 0 && sx < from.view.width && sy >= 0 && sy < from.view.height;
    return inside ? DibGetPixel(from.image, sx, sy) : context.paperColor;
}

uint32_t Waved(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    const auto shift =
        static_cast<int32_t>(std::sin(y * context.FilterWavesFrequency / 10.0) * context.FilterWavesIntensity);
    const bool inside = x + shift >= 0 && x + shift < from.view.width;
    return DibGetPixel(from.image, inside ? x + shift : x, y);
}

uint32_t Scattered(const DibLock &from, const FilterContext &context, int32_t x, int32_t y) {
    if (x == 0 && y == 0) SeedRandom(1234567);
    const int32_t aperture = context.FilterWaterDropsAperture;
    const int32_t dx = NextRandom() % aperture - aperture / 2;
    const int32_t dy = NextRandom() % aperture - aperture / 2;
    return DibGetPixel(from.image, x + dx, y + dy);
}

const struct {
    const char *name;
    Definition definition;
} kWarps[] = {{"Swirl", Swirled},
              {"Implode", Imploded},
              {"Explode", Exploded},
              {"Ripple", Rippled},
              {"Lens Correction", LensCorrected},
              {"Waves", Waved},
              {"Water Drops", Scattered}};

const FilterEntry &EntryOf(const std::string &name) {
    return *std::find_if(std::begin(FilterCatalogue), std::end(FilterCatalogue),
                         [&](const FilterEntry &entry) { return name == entry.name; });
}

DibOwner RandomPicture32(int32_t width, int32_t height, uint32_t *state) {
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) pixel = TestRandom(state);
    return MakePicture(width, height, 32, pixels);
}

/// A third of the settings at their defaults, where centres have exact mirror images; the others within their ranges.
FilterContext RandomContext(const FilterEntry &entry, uint32_t *state) {
    FilterContext context = MakeContext();
    context.paperColor = TestRandom(state) & 0xFFFFFF;
    for (const PageControl &control : entry.slots->page) {
        const auto count = static_cast<uint32_t>(control.edit.max - control.edit.min + 1);
        if (TestRandom(state) % 3 != 0)
            context.*control.number = control.edit.min + static_cast<int32_t>(TestRandom(state) % count);
    }
    return context;
}

} // namespace

TEST(Warps, AgreeWithTheirDefinitions) {
    setenv("SOURCE_DATE_EPOCH", "1234567", 1);
    for (const auto &[name, definition] : kWarps) {
        const FilterEntry &entry = EntryOf(name);
        uint32_t state = 99;
        for (uint32_t round = 0; round < 60; round++) {
            const bool hasAlpha = round % 5 == 4; // true colour of 32 bits
            const auto mode = hasAlpha ? kModeTrueColor : static_cast<ImageMode>(round % 5);
            if (!FilterAccepts(entry, mode)) continue;
            const uint32_t limit = round < 16 ? 8 : 200;
            const auto width = static_cast<int32_t>(TestRandom(&state) % limit) + 1;
            const auto height = static_cast<int32_t>(TestRandom(&state) % limit) + 1;
            DibOwner source =
                hasAlpha ? RandomPicture32(width, height, &state) : RandomPicture(width, height, mode, round);
            FilterContext context = RandomContext(entry, &state);
            context.FilterWavesHorizontal = 0;
            DibOwner result = RunKernel(name, source.handle, &context);
            DibLock from(source.handle), to(result.handle);
            ASSERT_TRUE(from && to);
            ASSERT_EQ(to.view.bits, from.view.bits);
            const uint32_t kept = 0xFFFFFFFF >> (32 - from.view.bits);
            for (int32_t y = 0; y < height; y++) {
                for (int32_t x = 0; x < width; x++)
                    ASSERT_EQ(DibGetPixel(to.image, x, y), definition(from, context, x, y) & kept)
                        << name << ' ' << width << 'x' << height << " at " << x << ',' << y << " round " << round;
            }
        }
    }
    unsetenv("SOURCE_DATE_EPOCH");
}

TEST(Warps, SurviveAnySettingAtAnyDepth) {
    for (const auto &[name, definition] : kWarps) {
        for (int32_t value : {INT32_MIN, -100, 0, 101, INT32_MAX}) {
            for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
                DibOwner source = MakePicture(9, 4, bits);
                FilterContext context = MakeContext();
                for (const PageControl &control : EntryOf(name).slots->page) context.*control.number = value;
                EXPECT_TRUE(RunKernel(name, source.handle, &context)) << name << ' ' << value << ' ' << bits;
            }
        }
    }
}

TEST(Waves, HorizontalWavesThePictureTurnedToTheLeft) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        DibOwner source = RandomPicture(37, 21, mode, 3);
        FilterContext context = MakeContext();
        context.FilterWavesIntensity = 14;
        DibOwner left(DibTurnAnticlockwise(source.handle));
        DibOwner expected(DibTurnClockwise(RunKernel("Waves", left.handle, &context).handle));
        context.FilterWavesHorizontal = 1;
        EXPECT_TRUE(SamePicture(RunKernel("Waves", source.handle, &context).handle, expected.handle)) << mode;
    }
}

TEST(Waves, KeepPixelsWhoseSourceLiesOutside) {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < 48; i++) pixels.push_back(i % 16);
    DibOwner source = MakePicture(16, 3, 8, pixels);
    FilterContext context = MakeContext();
    context.FilterWavesIntensity = 16;
    context.FilterWavesFrequency = 20; // sin 2 and sin 4 times 16: 14 and -12
    const std::vector<uint32_t> result = PixelsOf(RunKernel("Waves", source.handle, &context).handle);
    EXPECT_EQ(std::vector(result.begin() + 16, result.end()),
              (std::vector<uint32_t>{14, 15, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, //
                                     0,  1,  2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0,  1,  2,  3}));
}

TEST(WarpSample, MixesNeighboursAndBackground) {
    DibOwner picture = MakePicture(2, 2, 8, {10, 20, 30, 41});
    DibLock lock(picture.handle);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double x, y;
        uint32_t low;
    } kCases[] = {
        {-0.5, -0.5, 10},  // the upper left pixel itself
        {0, 0, 25},        // 25.25: the middle of all four
        {0, -0.5, 15},     // between the upper two
        {-1, -0.5, 105},   // half the background to the left of the first
        {1, 0.5, 121},     // 120.5: half the background to the right of the last
        {-1.5, -0.5, 200}, // at the outermost place all weight lies on the background
        {-1.6, 0, 200},    {1.5, 0, 200}, {0, 1.5, 200}, {nan, 0, 200},
    };
    for (const auto &[x, y, low] : kCases)
        EXPECT_EQ(WarpSampleBilinear(lock.image, x, y, 200) & 255, low) << x << ' ' << y;
}

TEST(Swirl, RestoringStoresTheDegreesOffsetTwice) {
    FilterContext context{};
    EntryOf("Swirl").slots->ResetDefaults(&context);
    EXPECT_EQ(context.FilterSwirlDegrees, 2925);
    EXPECT_EQ(FactorySettings().FilterSwirlDegrees, 1485);
}

TEST(WaterDrops, DrawAnewWhenTheClockMoves) {
    DibOwner source = RandomPicture(40, 40, kModeTrueColor, 1);
    setenv("SOURCE_DATE_EPOCH", "1", 1);
    DibOwner first = RunKernel("Water Drops", source.handle);
    setenv("SOURCE_DATE_EPOCH", "2", 1);
    EXPECT_FALSE(SamePicture(first.handle, RunKernel("Water Drops", source.handle).handle));
    unsetenv("SOURCE_DATE_EPOCH");
}

} // namespace lmf::testing
