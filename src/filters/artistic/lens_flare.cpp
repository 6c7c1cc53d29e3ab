// Lens Flare: a light source in the picture with its glow, its ring and the reflections that it throws on the line
// through the middle of the picture. Center X and Center Y place the light, in percent of the picture's size from its
// middle. Intensity is the size of the whole flare, in percent of the picture's larger side.
#include <array>
#include <cmath>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    OffsetSlider(550, "Center X:", &P::FilterLensFlareX, {0, 100}, 50)
        .In(Unit::Percent)
        .Help("Moves the light to the right, or to the left below 0, in percent of the picture's width."),
    OffsetSlider(551, "Center Y:", &P::FilterLensFlareY, {0, 100}, 50)
        .In(Unit::Percent)
        .Help("Moves the light down, or up below 0, in percent of the picture's height."),
    Slider(552, "Intensity:", &P::FilterLensFlareIntensity, {50, 300})
        .In(Unit::Percent)
        .Help("Makes the whole flare this large, in percent of the picture's larger side."),
};

/// How bright a light is at the distance d from its centre, R being its radius.
enum class Falloff : uint8_t {
    kCone,   ///< 1 - d / R
    kSquare, ///< the square of that
    kDisc,   ///< 1, but for a rim that falls evenly
    kLens,   ///< grows from the centre up to a rim that falls evenly
    kRing    ///< 0, but for a line round R
};

struct Tint {
    uint8_t red, green, blue; ///< how strongly each channel is brightened, of 255
};

/// One light, in units of the whole flare's size.
struct Light {
    float radius;
    Tint tint;
    Falloff falloff;
    float rim = 0;   ///< width of the rim or of half the line, as a part of the radius
    float place = 0; ///< on the line from the middle of the picture (0) to the source (-1); sources do not read it
};

/// Width of a lens's rim, and how fast it darkens inwards from there.
constexpr float kLensRim = 0.12f;

/// What surrounds the source.
constexpr Light kSourceLights[] = {
    {0.0375f, {239, 239, 239}, Falloff::kSquare},    {0.078125f, {245, 245, 245}, Falloff::kSquare},
    {0.1796875f, {255, 38, 43}, Falloff::kSquare},   {0.3359375f, {69, 59, 64}, Falloff::kCone},
    {0.084375f, {80, 15, 4}, Falloff::kRing, 0.07f},
};

constexpr Light kReflections[] = {
    {0.027f, {0, 14, 113}, Falloff::kSquare, 0, 0.6699f},      {0.01f, {90, 181, 142}, Falloff::kSquare, 0, 0.2692f},
    {0.005f, {56, 140, 106}, Falloff::kSquare, 0, -0.0112f},   {0.031f, {9, 29, 19}, Falloff::kDisc, 0.15f, 0.649f},
    {0.015f, {24, 14, 0}, Falloff::kDisc, 0.15f, 0.4696f},     {0.037f, {24, 14, 0}, Falloff::kDisc, 0.15f, 0.4087f},
    {0.022f, {42, 19, 0}, Falloff::kDisc, 0.15f, -0.2003f},    {0.025f, {0, 9, 17}, Falloff::kDisc, 0.15f, -0.4103f},
    {0.058f, {0, 4, 10}, Falloff::kDisc, 0.15f, -0.4503f},     {0.017f, {5, 5, 14}, Falloff::kDisc, 0.15f, -0.5112f},
    {0.2f, {9, 4, 0}, Falloff::kDisc, 0.15f, -1.496f},         {0.5f, {9, 4, 0}, Falloff::kDisc, 0.15f, -1.496f},
    {0.075f, {34, 19, 0}, Falloff::kLens, kLensRim, 0.4487f},  {0.1f, {14, 26, 0}, Falloff::kLens, kLensRim, 1.0f},
    {0.039f, {10, 25, 13}, Falloff::kLens, kLensRim, -1.301f}, {0.19f, {9, 0, 17}, Falloff::kRing, 0.04f, 1.309f},
    {0.195f, {9, 16, 5}, Falloff::kRing, 0.04f, 1.309f},       {0.2f, {17, 4, 0}, Falloff::kRing, 0.04f, 1.309f},
    {0.038f, {17, 4, 0}, Falloff::kRing, 0.04f, -1.301f},
};

/// A light at its place in the picture; lengths in pixels.
struct Spot {
    Falloff falloff;
    int32_t x, y;
    float radius, rim;
    float tint[3]; ///< blue, green, red

    /// Half the width of what the light may reach in a row; negative for nothing.
    int32_t ReachAt(int32_t row) const {
        // A pixel more on all sides, so that no rounding counts.
        const double reach = double{radius} + (falloff == Falloff::kRing ? double{rim} : 0.0) + 1.0;
        const double dy = static_cast<double>(row) - y;
        return reach < std::abs(dy) ? -1 : static_cast<int32_t>(std::sqrt(reach * reach - dy * dy)) + 1;
    }
};

/// What a light adds at `count` pixels of a row: `dx` is the first one's distance from its centre.
LMF_MULTIVERSION
void MeasureLight(float *__restrict amounts, const Spot &spot, int32_t dx, int32_t dy, int32_t count) {
    const float radius = spot.radius, rim = spot.rim;
    const double squaredDy = static_cast<double>(static_cast<float>(dy)) * static_cast<float>(dy);
    for (int32_t i = 0; i < count; i++) {
        const double across = static_cast<float>(dx + i);
        amounts[i] = static_cast<float>(std::sqrt(across * across + squaredDy));
    }
    switch (spot.falloff) {
    case Falloff::kCone:
        for (int32_t i = 0; i < count; i++) {
            const float t = (radius - amounts[i]) / radius;
            amounts[i] = t > 0 ? t : 0;
        }
        break;
    case Falloff::kSquare:
        for (int32_t i = 0; i < count; i++) {
            const float t = (radius - amounts[i]) / radius;
            amounts[i] = t > 0 ? t * t : 0;
        }
        break;
    case Falloff::kDisc:
        for (int32_t i = 0; i < count; i++) {
            const float t = (radius - amounts[i]) / rim;
            amounts[i] = t > 1 ? 1 : t > 0 ? t : 0;
        }
        break;
    case Falloff::kLens:
        for (int32_t i = 0; i < count; i++) {
            const float t = (radius - amounts[i]) / rim;
            amounts[i] = t > 1 ? 1 - kLensRim * t : t > 0 ? t : 0;
        }
        break;
    case Falloff::kRing:
        for (int32_t i = 0; i < count; i++) {
            const float t = std::abs((amounts[i] - radius) / rim);
            amounts[i] = t < 1 ? 1 - t : 0;
        }
        break;
    }
}

/// Mixes pixels with white. Where nothing is added they stay.
LMF_MULTIVERSION
void Brighten(uint8_t *__restrict bgr, const float *__restrict amounts, const float *tint, int32_t count) {
    const float blue = tint[0], green = tint[1], red = tint[2];
    const auto brighter = [](uint8_t channel, float amount, float part) {
        const auto value = static_cast<float>(channel);
        return static_cast<uint8_t>(static_cast<int32_t>((255 - value) * amount * part + value));
    };
    for (int32_t i = 0; i < count; i++) {
        bgr[i * 3] = brighter(bgr[i * 3], amounts[i], blue);
        bgr[i * 3 + 1] = brighter(bgr[i * 3 + 1], amounts[i], green);
        bgr[i * 3 + 2] = brighter(bgr[i * 3 + 2], amounts[i], red);
    }
}

constexpr size_t kSpots = std::size(kSourceLights) + std::size(kReflections);

/// All lights in the order in which they are added.
std::array<Spot, kSpots> PlaceLights(const FilterContext &context, int32_t width, int32_t height) {
    const auto part = [](int32_t percent, int32_t length) {
        return static_cast<int32_t>(int64_t{percent} * length / 100);
    };
    const int32_t middleX = width / 2, middleY = height / 2;
    const int32_t sourceX = part(context.FilterLensFlareX - 50, width) + middleX;
    const int32_t sourceY = part(context.FilterLensFlareY - 50, height) + middleY;
    const auto flareSize = static_cast<float>(part(context.FilterLensFlareIntensity, std::max(width, height)));
    const auto place = [&](const Light &light, int32_t x, int32_t y) {
        const float radius = light.radius * flareSize;
        return Spot{light.falloff,
                    x,
                    y,
                    radius,
                    light.rim * radius,
                    {static_cast<float>(light.tint.blue) / 255.0f, static_cast<float>(light.tint.green) / 255.0f,
                     static_cast<float>(light.tint.red) / 255.0f}};
    };
    const auto along = [](int32_t distance, float factor, int32_t middle) {
        return static_cast<int32_t>(static_cast<float>(distance) * factor + static_cast<float>(middle));
    };
    std::array<Spot, kSpots> spots;
    Spot *spot = spots.data();
    for (const Light &light : kSourceLights) *spot++ = place(light, sourceX, sourceY);
    for (const Light &light : kReflections)
        *spot++ = place(light, along(middleX - sourceX, light.place, middleX),
                        along(middleY - sourceY, light.place, middleY));
    return spots;
}

/// Lights on their way over a row of pixels.
struct LitRow {
    int32_t width;
    BlockArray<uint8_t> bgr;
    BlockArray<float> amounts;
    BlockArray<uint8_t> isReached; ///< by any light, for each pixel

    explicit LitRow(int32_t pixels)
        : width(pixels), bgr(static_cast<uint64_t>(pixels) * 3), amounts(static_cast<uint64_t>(pixels)),
          isReached(static_cast<uint64_t>(pixels)) {}
    explicit operator bool() const { return bgr && amounts && isReached; }

    void Add(const Spot &spot, int32_t y, bool markReached) {
        const int32_t reach = spot.ReachAt(y);
        const int32_t left = std::max(spot.x - reach, 0), right = std::min(spot.x + reach + 1, width);
        if (reach < 0 || left >= right) return;
        MeasureLight(amounts.data, spot, left - spot.x, y - spot.y, right - left);
        Brighten(bgr.data + ptrdiff_t{left} * 3, amounts.data, spot.tint, right - left);
        for (int32_t x = left; x < right && markReached; x++) {
            const bool isCentre = x == spot.x && y == spot.y; // where a lens may reach and yet add nothing
            if (amounts[x - left] != 0 || (isCentre && spot.falloff == Falloff::kLens && spot.radius > 0))
                isReached[x] = 1;
        }
    }
};

DibHandle LensFlareKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    LitRow row(source.width);
    if (!pass || !row || ByteChannels(source.bits) != 3) return nullptr;
    const std::array<Spot, kSpots> spots = PlaceLights(context, source.width, source.height);
    const bool hasAlpha = source.bits == 32;
    for (int32_t y = 0; y < source.height; y++) {
        ReadByteRow(row.bgr.data, source, y);
        for (const Spot &spot : spots) row.Add(spot, y, hasAlpha);
        WriteByteRow(pass.to, y, row.bgr.data);
        // Only pixels that a light reaches lose their alpha.
        for (int32_t x = 0; x < source.width && hasAlpha; x++) {
            if (row.isReached[x] == 0) DibSetPixel(pass.to, x, y, DibGetPixel(source, x, y));
            row.isReached[x] = 0;
        }
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kLensFlare = MakeFilter<kPage>(LensFlareKernel);

} // namespace lmf
