#include "image/geometry/warp_sample.h"

#include <cmath>

#include "common/multiversion.h"
#include "image/geometry/four_taps.h"

namespace lmf {

uint32_t WarpSampleBilinear(const ReadView &picture, double x, double y, uint32_t background) {
    const double px = x + 0.5, py = y + 0.5;
    if (px < -1 || px >= picture.width || py < -1 || py >= picture.height) return background;
    const auto ix = static_cast<int32_t>(px), iy = static_cast<int32_t>(py);
    const auto ix1 = static_cast<int32_t>(px + 1), iy1 = static_cast<int32_t>(py + 1);
    const bool hasLeft = px >= 0, hasRight = picture.width > px + 1;
    const bool hasTop = py >= 0, hasBottom = picture.height > py + 1;
    const uint32_t p00 = hasLeft && hasTop ? DibGetPixel(picture, ix, iy) : background;
    const uint32_t p10 = hasRight && hasTop ? DibGetPixel(picture, ix1, iy) : background;
    const uint32_t p01 = hasLeft && hasBottom ? DibGetPixel(picture, ix, iy1) : background;
    const uint32_t p11 = hasRight && hasBottom ? DibGetPixel(picture, ix1, iy1) : background;
    const double fx = px - std::floor(px), fy = py - std::floor(py);
    const double gx = 1 - fx, gy = 1 - fy;
    uint32_t mixed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto level = [shift](uint32_t pixel) { return static_cast<double>(pixel >> shift & 0xFF); };
        const double value = (level(p10) * fx + level(p00) * gx) * gy + (level(p01) * gx + level(p11) * fx) * fy + 0.5;
        mixed |= (static_cast<uint32_t>(value) & 0xFF) << shift;
    }
    return mixed;
}

namespace {

template <size_t kBytes>
inline __attribute__((always_inline)) void SampleRowOf(const WriteView &to, int32_t row, const ReadView &from,
                                                       int32_t left, int32_t right, const double *xs, const double *ys,
                                                       uint32_t background) {
    constexpr size_t kColors = kBytes == 1 ? 1 : 3;
    uint8_t *target = to.Row(row) + left * static_cast<ptrdiff_t>(kBytes);
    for (int32_t i = left; i < right; i++, target += kBytes) {
        const double px = xs[i] + 0.5, py = ys[i] + 0.5;
        if (!(px >= 0 && px + 1 < from.width && py >= 0 && py + 1 < from.height)) {
            const uint32_t pixel = WarpSampleBilinear(from, xs[i], ys[i], background);
            if constexpr (kBytes == 1)
                *target = static_cast<uint8_t>(pixel);
            else
                StoreBgr(target, pixel);
            continue;
        }
        const auto x = static_cast<int32_t>(px), y = static_cast<int32_t>(py);
        FourTaps<IntPixel<kBytes>> taps;
        ReadTaps<kBytes>(taps, from.Row(y), from.Row(static_cast<int32_t>(py + 1)), x, static_cast<int32_t>(px + 1));
        FourTaps<DoublePixel<kBytes>> p;
        ConvertTaps(p, taps);
        const double fx = px - x, fy = py - y, gx = 1 - fx, gy = 1 - fy;
        IntPixel<kBytes> mixed;
        ConvertPixel(mixed, (p.p10 * fx + p.p00 * gx) * gy + (p.p01 * gx + p.p11 * fx) * fy + 0.5);
        StorePixel<kColors>(target, mixed);
    }
}

LMF_MULTIVERSION
void SampleRow(const WriteView &to, int32_t row, const ReadView &from, int32_t left, int32_t right, const double *xs,
               const double *ys, uint32_t background) {
    switch (from.bits) {
    case 8:
        return SampleRowOf<1>(to, row, from, left, right, xs, ys, background);
    case 24:
        return SampleRowOf<3>(to, row, from, left, right, xs, ys, background);
    default:
        return SampleRowOf<4>(to, row, from, left, right, xs, ys, background);
    }
}

} // namespace

void WarpSampleRow(const WriteView &to, int32_t y, const ReadView &from, int32_t left, int32_t right, const double *xs,
                   const double *ys, uint32_t background) {
    SampleRow(to, y, from, left, right, xs, ys, background);
}

} // namespace lmf
