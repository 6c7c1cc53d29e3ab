// Normalize: stretches the tones of a picture to the whole scale. The darkest and the brightest percent of the pixels,
// by their weighted grey, are cut off; what lies between runs from 0 to 254, and only what is cut off above becomes
// 255. One table serves all three channels. There are no settings.
#include "filters/histogram/normalize.h"

#include <cstring>

#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

/// Pixels at each weighted grey.
struct Histogram {
    uint32_t at[256];
};

/// Four counts in turn, so that equal neighbours do not wait for each other.
void CountRow(const uint8_t *grey, int32_t width, Histogram counts[4]) {
    int32_t x = 0;
    for (; x + 4 <= width; x += 4)
        for (int32_t lane = 0; lane < 4; lane++) counts[lane].at[grey[x + lane]]++;
    for (; x < width; x++) counts[0].at[grey[x]]++;
}

/// @return false when memory is short
bool CountGreys(const ReadView &picture, Histogram *histogram) {
    BlockArray<uint8_t> grey(static_cast<uint64_t>(picture.width));
    if (!grey) return false;
    Histogram counts[4] = {};
    for (int32_t y = 0; y < picture.height; y++) {
        ReadGreyRow(grey.data, picture, y);
        CountRow(grey.data, picture.width, counts);
    }
    for (int32_t i = 0; i < 256; i++)
        histogram->at[i] = counts[0].at[i] + counts[1].at[i] + counts[2].at[i] + counts[3].at[i];
    return true;
}

/// The levels between which the tones lie when up to `cut` pixels are left out at each end.
struct ToneSpan {
    int32_t low, high;

    ToneSpan(const Histogram &histogram, uint64_t cut) : low(0), high(255) {
        uint64_t below = histogram.at[0], above = histogram.at[255];
        while (below <= cut && low < 255) below += histogram.at[++low];
        while (above <= cut && high > 0) above += histogram.at[--high];
    }
};

ToneTable StretchTable(const Histogram &histogram, uint64_t pixels) {
    ToneSpan span(histogram, pixels / 100);
    if (span.low == span.high) span = ToneSpan(histogram, 0);
    ToneTable table;
    for (int32_t level = 0; level < 256; level++) {
        int32_t value = level < span.low ? 0 : 255;
        // A picture of one grey keeps it: there is nothing to stretch.
        if (span.low == span.high && level == span.low)
            value = level;
        else if (level >= span.low && level <= span.high)
            value = 254 * (level - span.low) / (span.high - span.low);
        table.at[level] = static_cast<uint8_t>(value);
    }
    return table;
}

} // namespace

DibHandle Normalize(const ReadView &source) {
    PixelPass pass(source);
    Histogram histogram;
    if (!pass || !CountGreys(source, &histogram)) return nullptr;
    const uint64_t pixels = static_cast<uint64_t>(source.width) * static_cast<uint64_t>(source.height);
    MapChannels(pass, StretchTable(histogram, pixels));
    return pass.Finish();
}

namespace {

DibHandle NormalizeKernel(const ReadView &source, FilterContext &) {
    return Normalize(source);
}

} // namespace

extern constexpr Filter kNormalize = MakeFilter(NormalizeKernel);

} // namespace lmf
