#include "image/geometry/warp_sample.h"

#include <cmath>

#include "common/multiversion.h"
#include "image/geometry/four_taps.h"

namespace lmf {

using DoubleLanes = double __attribute__((vector_size(32)));

uint32_t WarpSampleBilinear(const ReadView &picture, double x, double y, uint32_t background) {
    const double px = x + 0.5, py = y + 0.5;
    if (!(px >= -1 && px < picture.width && py >= -1 && py < picture.height)) return background;
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

/// A position whose four neighbours lie in the picture.
struct Inside {
    int32_t x, y, x1, y1;
    double fx, fy;

    bool Place(const ReadView &view, double px, double py) {
        if (!(px >= 0 && px + 1 < view.width && py >= 0 && py + 1 < view.height)) return false;
        x = static_cast<int32_t>(px);
        y = static_cast<int32_t>(py);
        x1 = static_cast<int32_t>(px + 1);
        y1 = static_cast<int32_t>(py + 1);
        fx = px - x;
        fy = py - y;
        return true;
    }
};

LMF_MULTIVERSION
static void SampleRow24(const WriteView &to, int32_t row, const ReadView &from, int32_t left, int32_t right,
                        const double *xs, const double *ys, uint32_t background) {
    uint8_t *target = to.Row(row) + static_cast<ptrdiff_t>(left) * 3;
    for (int32_t i = left; i < right; i++, target += 3) {
        Inside at;
        if (!at.Place(from, xs[i] + 0.5, ys[i] + 0.5)) {
            DibSetPixel(to, i, row, WarpSampleBilinear(from, xs[i], ys[i], background));
            continue;
        }
        FourTaps taps;
        ReadTaps24(taps, from.Row(at.y), from.Row(at.y1), at.x, at.x1);
        const double gx = 1 - at.fx, gy = 1 - at.fy;
        const DoubleLanes value = (__builtin_convertvector(taps.p10, DoubleLanes) * at.fx +
                                   __builtin_convertvector(taps.p00, DoubleLanes) * gx) *
                                      gy +
                                  (__builtin_convertvector(taps.p01, DoubleLanes) * gx +
                                   __builtin_convertvector(taps.p11, DoubleLanes) * at.fx) *
                                      at.fy +
                                  0.5;
        StoreLanes24(target, __builtin_convertvector(value, IntLanes));
    }
}

static void SampleRow8(const WriteView &to, int32_t row, const ReadView &from, int32_t left, int32_t right,
                       const double *xs, const double *ys, uint32_t background) {
    uint8_t *target = to.Row(row);
    for (int32_t i = left; i < right; i++) {
        Inside at;
        if (!at.Place(from, xs[i] + 0.5, ys[i] + 0.5)) {
            target[i] = static_cast<uint8_t>(WarpSampleBilinear(from, xs[i], ys[i], background));
            continue;
        }
        const uint8_t *upper = from.Row(at.y), *lower = from.Row(at.y1);
        const double gx = 1 - at.fx, gy = 1 - at.fy;
        target[i] = static_cast<uint8_t>((upper[at.x1] * at.fx + upper[at.x] * gx) * gy +
                                         (lower[at.x] * gx + lower[at.x1] * at.fx) * at.fy + 0.5);
    }
}

void WarpSampleRow(const WriteView &to, int32_t y, const ReadView &from, int32_t left, int32_t right, const double *xs,
                   const double *ys, uint32_t background) {
    if (from.bits == 24) return SampleRow24(to, y, from, left, right, xs, ys, background);
    if (from.bits == 8) return SampleRow8(to, y, from, left, right, xs, ys, background);
    for (int32_t x = left; x < right; x++) DibSetPixel(to, x, y, WarpSampleBilinear(from, xs[x], ys[x], background));
}

} // namespace lmf
