// Waves: shifts every row sideways along a sine. The intensity is the greatest shift in pixels, the frequency the
// tenths of a radian that the wave advances a row; Horizontal lets the columns wave instead.
#include <cmath>
#include <cstring>

#include "engine/filter.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1050, "Intensity:", &P::FilterWavesIntensity, {2, 16})
        .In(Unit::Pixels)
        .Help("How far the waves push the picture to either side."),
    Slider(1051, "Frequency:", &P::FilterWavesFrequency, {2, 10})
        .In(Unit::None, 10)
        .Help("How closely the waves follow each other."),
    CheckBox(1052, "Horizontal", &P::FilterWavesHorizontal)
        .Help("Lets the waves run from side to side, pushing columns up and down."),
};

/// Shift of a line, pixels.
int32_t ShiftOf(int32_t line, const FilterContext &context) {
    const double phase = static_cast<double>(int64_t{line} * context.FilterWavesFrequency) / 10.0;
    return static_cast<int32_t>(std::sin(phase) * context.FilterWavesIntensity);
}

void WaveRows(const BytePass &pass, const FilterContext &context) {
    const int32_t width = pass.From().width, height = pass.From().height;
    const ptrdiff_t bytes = pass.Channels();
    for (int32_t y = 0; y < height; y++) {
        const int32_t shift = ShiftOf(y, context);
        // The columns whose pixels come from elsewhere; all others keep their own.
        const ptrdiff_t left = std::clamp(-shift, 0, width) * bytes,
                        right = std::clamp(width - shift, 0, width) * bytes;
        const uint8_t *source = pass.From().Row(y);
        uint8_t *target = pass.To().Row(y);
        std::memcpy(target, source, static_cast<size_t>(left));
        if (left < right) std::memcpy(target + left, source + left + shift * bytes, static_cast<size_t>(right - left));
        std::memcpy(target + right, source + right, static_cast<size_t>(width * bytes - right));
    }
}

/// Rows of a picture turned a quarter to the left are columns from the right; the turns there and back cancel, so
/// each pixel is fetched straight from its place in a neighbouring row.
template <size_t kBytes>
void WaveColumns(const BytePass &pass, const int32_t *shifts) {
    const ReadView &from = pass.From();
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *source = from.Row(y);
        uint8_t *target = pass.To().Row(y);
        for (int32_t x = 0; x < from.width; x++, source += kBytes, target += kBytes) {
            const bool stays = y + shifts[x] < 0 || y + shifts[x] >= from.height;
            std::memcpy(target, source - (stays ? 0 : shifts[x] * from.stride), kBytes);
        }
    }
}

DibHandle WavesKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source, Alpha::Carried);
    BlockArray<int32_t> shifts(static_cast<uint64_t>(source.width));
    if (!pass || !shifts) return nullptr;
    if (context.FilterWavesHorizontal == 0) {
        WaveRows(pass, context);
        return pass.Finish();
    }
    for (int32_t x = 0; x < source.width; x++) shifts[x] = ShiftOf(source.width - 1 - x, context);
    const int32_t channels = pass.Channels();
    (channels == 1 ? WaveColumns<1> : channels == 3 ? WaveColumns<3> : WaveColumns<4>)(pass, shifts.data);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kWaves = MakeFilter<kPage>(WavesKernel);

} // namespace lmf
