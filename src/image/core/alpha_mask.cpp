#include "image/core/alpha_mask.h"

#include "common/multiversion.h"
#include "image/core/div255.h"

namespace lmf {

namespace {

LMF_MULTIVERSION
void MultiplyBytes(uint8_t *__restrict coverage, const uint8_t *__restrict alpha, size_t count) {
    for (size_t i = 0; i < count; i++)
        coverage[i] = static_cast<uint8_t>(Div255(static_cast<uint16_t>(coverage[i] * alpha[i])));
}

/// Positions of the coverage that the second picture reaches along one axis.
struct Overlap {
    int32_t first, last;

    Overlap(int32_t start, int32_t length, int32_t limit)
        : first(std::clamp(start, 0, limit)),
          last(static_cast<int32_t>(std::clamp<int64_t>(int64_t{start} + length, first, limit))) {}
};

void MultiplyPicture(const WriteView &coverage, const ReadView &alpha, int32_t left, int32_t top) {
    const Overlap columns(left, alpha.width, coverage.width), rows(top, alpha.height, coverage.height);
    for (int32_t y = rows.first; y < rows.last; y++) {
        uint8_t *row = coverage.Row(y);
        if (alpha.bits == 8) {
            MultiplyBytes(row + columns.first, alpha.Row(y - top) + (columns.first - left),
                          static_cast<size_t>(columns.last - columns.first));
            continue;
        }
        for (int32_t x = columns.first; x < columns.last; x++)
            row[x] = static_cast<uint8_t>(row[x] * (DibGetPixel(alpha, x - left, y - top) & 255) / 255);
    }
}

} // namespace

DibHandle AlphaFromCoverage(LockedDib coverage, DibHandle second, int32_t x, int32_t y) {
    if (const DibReadLock alpha(second); alpha) MultiplyPicture(coverage.View(), alpha.view, x, y);
    return coverage.Release();
}

LMF_MULTIVERSION
void TintRow(uint8_t *__restrict bgr, const uint8_t *__restrict mask, int32_t width, Color color) {
    const uint8_t red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    constexpr int32_t kStretch = 64;
    for (int32_t first = 0; first < width; first += kStretch) {
        const int32_t end = std::min(first + kStretch, width);
        // Masks are often empty over long stretches.
        uint8_t any = 0;
        for (int32_t x = first; x < end; x++) any |= mask[x];
        if (any == 0) continue;
        for (int32_t x = first; x < end; x++) {
            bgr[x * 3] = MixBytes(bgr[x * 3], blue, mask[x]);
            bgr[x * 3 + 1] = MixBytes(bgr[x * 3 + 1], green, mask[x]);
            bgr[x * 3 + 2] = MixBytes(bgr[x * 3 + 2], red, mask[x]);
        }
    }
}

} // namespace lmf
