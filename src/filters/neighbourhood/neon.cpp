// Neon: glowing edges on black, the strength of the brightness gradient by J. M. S. Prewitt's two windows (1970).
// Pictures of more than 500 pixels across are reduced to that first and enlarged again, which makes the lines soft.
// There are no settings.
#include "filters/neighbourhood/neon.h"

#include <cmath>

#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/scale/resample.h"

namespace lmf {

static constexpr int32_t kLargestSide = 500;

/// Three pixels on each side of (x, y), the two sides as sums of each channel.
struct Gradient {
    int32_t sums[3] = {};

    void Add(uint32_t pixel, int32_t sign) {
        for (int32_t c = 0; c < 3; c++) sums[c] += sign * static_cast<int32_t>(pixel >> 8 * c & 255);
    }
};

static uint32_t EdgeAt(const ReadView &from, int32_t x, int32_t y) {
    const int32_t columns[] = {std::max(x - 1, 0), x, std::min(x + 1, from.width - 1)};
    const int32_t rows[] = {std::max(y - 1, 0), y, std::min(y + 1, from.height - 1)};
    Gradient down, across;
    for (int32_t i = 0; i < 3; i++) {
        down.Add(DibGetPixel(from, columns[i], rows[0]), -1);
        down.Add(DibGetPixel(from, columns[i], rows[2]), 1);
        across.Add(DibGetPixel(from, columns[0], rows[i]), -1);
        across.Add(DibGetPixel(from, columns[2], rows[i]), 1);
    }
    uint32_t edge = 0;
    for (int32_t c = 0; c < 3; c++) {
        const int32_t square = down.sums[c] * down.sums[c] + across.sums[c] * across.sums[c];
        const auto strength = static_cast<int32_t>(std::sqrt(static_cast<double>(square)) / 1.8);
        edge |= static_cast<uint32_t>(std::min(strength, 255)) << 8 * c;
    }
    return edge;
}

static DibHandle FindEdges(const ReadView &picture) {
    PixelPass pass(picture);
    if (!pass) return nullptr;
    const ReadView &view = pass.from;
    for (int32_t y = 0; y < view.height; y++)
        for (int32_t x = 0; x < view.width; x++) DibSetPixel(pass.to, x, y, EdgeAt(pass.from, x, y));
    return pass.Finish();
}

DibHandle Neon(const ReadView &source) {
    const int32_t width = source.width, height = source.height;
    const int32_t side = std::max(width, height);
    if (side <= kLargestSide) return FindEdges(source);

    const int32_t percent = kLargestSide * 100 / side;
    const LockedDib reduced(DibScalePercent(source, percent, percent, kWindowAutomatic));
    if (!reduced) return nullptr;
    LockedDib edges(FindEdges(reduced));
    if (!edges) return nullptr;
    DibHandle enlarged = DibScale(edges, width, height, kWindowAutomatic, 1.0);
    return enlarged != nullptr ? enlarged : edges.Release();
}

static DibHandle NeonKernel(const ReadView &source, FilterContext &) {
    return Neon(source);
}

extern constexpr Filter kNeon = MakeFilter(NeonKernel);

} // namespace lmf
