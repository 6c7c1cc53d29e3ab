// Waves: shifts every row sideways along a sine. The intensity is the greatest shift in pixels, the frequency the
// tenths of a radian that the wave advances a row; Horizontal lets the columns wave instead.
#include <cmath>
#include <cstring>

#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1050, "Intensity:", &P::FilterWavesIntensity, {2, 16}),
    Slider(1051, "Frequency:", &P::FilterWavesFrequency, {2, 10}),
    CheckBox(1052, "Horizontal", &P::FilterWavesHorizontal),
};

/// Shift of line `line`, pixels. A shift of any size beyond the picture leaves the pixels where they are.
static int64_t ShiftOf(int32_t line, const FilterContext &context) {
    const double phase = static_cast<double>(static_cast<int64_t>(line) * context.FilterWavesFrequency) / 10.0;
    return static_cast<int64_t>(std::sin(phase) * context.FilterWavesIntensity);
}

/// Bytes of a pixel, or 0 where pixels share bytes.
static size_t PixelBytes(uint32_t bits) {
    return HasBytePixels(bits) ? bits / 8 : 0;
}

static void WaveRows(const PixelPass &pass, const FilterContext &context) {
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const size_t bytes = PixelBytes(from.bits);
    for (int32_t y = 0; y < from.height; y++) {
        const int64_t shift = ShiftOf(y, context);
        if (bytes == 0) {
            for (int32_t x = 0; x < from.width; x++) {
                const bool stays = x + shift < 0 || x + shift >= from.width;
                const auto fromX = static_cast<int32_t>(stays ? x : x + shift);
                DibSetPixel(pass.to, x, y, DibGetPixel(pass.from, fromX, y));
            }
            continue;
        }
        // The columns whose pixels come from elsewhere; all others keep their own.
        const auto left = static_cast<size_t>(std::clamp<int64_t>(-shift, 0, from.width)) * bytes;
        const auto right = static_cast<size_t>(std::clamp<int64_t>(from.width - shift, 0, from.width)) * bytes;
        const uint8_t *source = from.Row(y);
        uint8_t *target = to.Row(y);
        if (left < right) std::memcpy(target + left, source + left + shift * static_cast<int64_t>(bytes), right - left);
        const size_t rowBytes = static_cast<size_t>(from.width) * bytes;
        std::memcpy(target, source, std::min(left, rowBytes));
        std::memcpy(target + right, source + right, rowBytes - right);
    }
}

/// Rows of a picture turned a quarter to the left are columns from the right; the turns there and back cancel, so
/// each pixel is fetched straight from its place in a neighbouring row.
template <size_t kBytes>
static void WaveColumns(const PixelPass &pass, const int64_t *shifts) {
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *source = from.Row(y);
        uint8_t *target = to.Row(y);
        for (int32_t x = 0; x < from.width; x++, source += kBytes, target += kBytes) {
            const bool stays = y + shifts[x] < 0 || y + shifts[x] >= from.height;
            std::memcpy(target, source - (stays ? 0 : shifts[x] * from.stride), kBytes);
        }
    }
}

static bool WaveColumns(const PixelPass &pass, const FilterContext &context) {
    const ReadView &from = pass.from;
    BlockArray<int64_t> shifts(static_cast<uint64_t>(from.width));
    if (!shifts) return false;
    for (int32_t x = 0; x < from.width; x++) shifts[x] = ShiftOf(from.width - 1 - x, context);
    switch (PixelBytes(from.bits)) {
    case 1:
        WaveColumns<1>(pass, shifts.data);
        return true;
    case 3:
        WaveColumns<3>(pass, shifts.data);
        return true;
    case 4:
        WaveColumns<4>(pass, shifts.data);
        return true;
    default:
        for (int32_t y = 0; y < from.height; y++) {
            for (int32_t x = 0; x < from.width; x++) {
                const bool stays = y + shifts[x] < 0 || y + shifts[x] >= from.height;
                const auto fromY = static_cast<int32_t>(stays ? y : y + shifts[x]);
                DibSetPixel(pass.to, x, y, DibGetPixel(pass.from, x, fromY));
            }
        }
        return true;
    }
}

static DibHandle WavesKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    if (context.FilterWavesHorizontal == 0)
        WaveRows(pass, context);
    else if (!WaveColumns(pass, context))
        return nullptr;
    return pass.Finish();
}

extern constexpr Filter kWaves = MakeFilter<kPage>(WavesKernel);

} // namespace lmf
