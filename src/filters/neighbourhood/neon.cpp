// Neon: glowing edges on black, the strength of the brightness gradient by J. M. S. Prewitt's two windows (1970).
// Pictures of more than 500 pixels across are reduced to that first and enlarged again, which makes the lines soft.
// There are no settings.
#include "filters/neighbourhood/neon.h"

#include <cmath>

#include "engine/slots.h"
#include "image/pixel_pass.h"
#include "image/resample.h"

namespace lmf {

static constexpr int32_t kLargestSide = 500;

/// Three pixels on each side of (x, y), the two sides as sums of each channel.
struct Gradient {
    int32_t sums[3] = {};

    void Add(uint32_t pixel, int32_t sign) {
        for (int32_t c = 0; c < 3; c++) sums[c] += sign * static_cast<int32_t>(pixel >> 8 * c & 255);
    }
};

static uint32_t EdgeAt(const DibLock &from, int32_t x, int32_t y) {
    const int32_t columns[] = {std::max(x - 1, 0), x, std::min(x + 1, from.view.width - 1)};
    const int32_t rows[] = {std::max(y - 1, 0), y, std::min(y + 1, from.view.height - 1)};
    Gradient down, across;
    for (int32_t i = 0; i < 3; i++) {
        down.Add(DibGetPixel(from.image, columns[i], rows[0]), -1);
        down.Add(DibGetPixel(from.image, columns[i], rows[2]), 1);
        across.Add(DibGetPixel(from.image, columns[0], rows[i]), -1);
        across.Add(DibGetPixel(from.image, columns[2], rows[i]), 1);
    }
    uint32_t edge = 0;
    for (int32_t c = 0; c < 3; c++) {
        const int32_t square = down.sums[c] * down.sums[c] + across.sums[c] * across.sums[c];
        const auto strength = static_cast<int32_t>(std::sqrt(static_cast<double>(square)) / 1.8);
        edge |= static_cast<uint32_t>(std::min(strength, 255)) << 8 * c;
    }
    return edge;
}

static DibHandle FindEdges(DibHandle picture) {
    PixelPass pass(picture);
    if (!pass) return nullptr;
    const DibView &view = pass.from.view;
    for (int32_t y = 0; y < view.height; y++)
        for (int32_t x = 0; x < view.width; x++) DibSetPixel(pass.to.image, x, y, EdgeAt(pass.from, x, y));
    return pass.Finish();
}

DibHandle NeonKernel(DibHandle source, FilterContext *) {
    int32_t width = 0, height = 0;
    if (!DibInfo(source, &width, &height, nullptr, nullptr)) return nullptr;
    const int32_t side = std::max(width, height);
    if (side <= kLargestSide) return FindEdges(source);

    const int32_t percent = kLargestSide * 100 / side;
    DibOwner reduced(DibScalePercent(source, percent, percent, kWindowAutomatic));
    DibOwner edges(FindEdges(reduced.handle));
    if (!edges) return nullptr;
    DibHandle enlarged = DibScale(edges.handle, width, height, kWindowAutomatic, 1.0);
    return enlarged != nullptr ? enlarged : edges.Release();
}

extern constexpr FilterSlots kNeon = MakeSlots(NeonKernel);

} // namespace lmf
