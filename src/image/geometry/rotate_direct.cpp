#include <cstring>

#include "common/multiversion.h"
#include "image/geometry/four_taps.h"
#include "image/geometry/free_rotation.h"
#include "image/geometry/rotation_canvas.h"

namespace lmf {

namespace {

constexpr int kWeightBits = 8;

int32_t WeightOf(int64_t position) {
    return static_cast<int32_t>(position >> (kFractionBits - kWeightBits)) & ((1 << kWeightBits) - 1);
}

/// The mix of four neighbours, for one channel or for all at once.
template <typename Number>
inline __attribute__((always_inline)) void MixFour(Number &mixed, const FourTaps<Number> &p, int32_t weightX,
                                                   int32_t weightY) {
    const Number above = (p.p00 << kWeightBits) + (p.p10 - p.p00) * weightX;
    const Number below = (p.p01 << kWeightBits) + (p.p11 - p.p01) * weightX;
    mixed = ((above << kWeightBits) + (below - above) * weightY + (1 << (2 * kWeightBits - 1))) >> (2 * kWeightBits);
}

template <size_t kBytes>
inline __attribute__((always_inline)) void MixInsideOf(uint8_t *to, const ReadView &from, SourceRow at, int64_t stepX,
                                                       int64_t stepY, int32_t count) {
    for (; count > 0; count--, at.x += stepX, at.y += stepY, to += kBytes) {
        const auto x = static_cast<int32_t>(at.x >> kFractionBits);
        const uint8_t *row = from.Row(static_cast<int32_t>(at.y >> kFractionBits));
        FourTaps<IntPixel<kBytes>> taps;
        ReadTaps<kBytes>(taps, row, row - from.stride, x, x + 1);
        IntPixel<kBytes> mixed;
        MixFour(mixed, taps, WeightOf(at.x), WeightOf(at.y));
        StorePixel<kBytes>(to, mixed);
    }
}

/// A stretch of pixels of which all neighbours lie inside the source; `at` is the upper left neighbour of the first.
LMF_MULTIVERSION
void MixInside(uint8_t *to, const ReadView &from, SourceRow at, int64_t stepX, int64_t stepY, int32_t count) {
    switch (from.bits) {
    case 8:
        return MixInsideOf<1>(to, from, at, stepX, stepY, count);
    case 24:
        return MixInsideOf<3>(to, from, at, stepX, stepY, count);
    default:
        return MixInsideOf<4>(to, from, at, stepX, stepY, count);
    }
}

/// A stretch along an edge: the outermost pixels stand in for the neighbours that are missing.
void MixEdge(uint8_t *to, const ReadView &from, SourceRow at, int64_t stepX, int64_t stepY, int32_t count) {
    const ptrdiff_t channels = from.bits / 8;
    for (; count > 0; count--, at.x += stepX, at.y += stepY) {
        const auto x = static_cast<int32_t>(at.x >> kFractionBits), y = static_cast<int32_t>(at.y >> kFractionBits);
        const ptrdiff_t left = std::max(x, 0) * channels, right = std::min(x + 1, from.width - 1) * channels;
        const uint8_t *p = from.Row(std::max(y, 0)), *q = from.Row(std::min(y + 1, from.height - 1));
        for (ptrdiff_t c = 0; c < channels; c++) {
            int32_t mixed;
            MixFour<int32_t>(mixed, {p[left + c], p[right + c], q[left + c], q[right + c]}, WeightOf(at.x),
                             WeightOf(at.y));
            *to++ = static_cast<uint8_t>(mixed);
        }
    }
}

/// Runs visit(y, range) for all of 0 <= x < width in small tiles: a whole row of the result would cross so many rows of
/// the source that each read missed the caches and the page table.
template <typename Visit>
void ForEachTileRow(int32_t width, int32_t height, Visit visit) {
    constexpr int32_t kTileWidth = 128, kTileHeight = 32;
    for (int32_t top = 0; top < height; top += std::min(kTileHeight, height - top)) {
        for (int32_t left = 0; left < width; left += std::min(kTileWidth, width - left)) {
            for (int32_t y = top; y < top + std::min(kTileHeight, height - top); y++)
                visit(y, Range{left, left + std::min(kTileWidth, width - left)});
        }
    }
}

void MixRows(const RotationCanvas &canvas, const ReadView &from, const SourceMap &map) {
    const size_t channels = from.bits / 8;
    const auto along = [&](int32_t y, Range range, auto mix) {
        if (range.first >= range.last) return;
        const SourceRow start = map.Row(y);
        const SourceRow at{start.x - kHalf + range.first * map.stepX, start.y - kHalf + range.first * map.stepY};
        mix(canvas.to.Row(y) + static_cast<size_t>(range.first) * channels, from, at, map.stepX, map.stepY,
            range.last - range.first);
    };
    ForEachTileRow(map.plan.width, map.plan.height,
                   [&](int32_t y, Range tile) { along(y, Common(map.PartsOf(y).whole, tile), MixInside); });
    for (int32_t y = 0; y < map.plan.height; y++) {
        const auto [covered, whole] = map.PartsOf(y);
        along(y, {covered.first, whole.first}, MixEdge);
        along(y, {whole.last, covered.last}, MixEdge);
        FinishRow(canvas, map, y, {covered, whole});
    }
}

void PickRows(const RotationCanvas &canvas, const ReadView &from, const SourceMap &map) {
    for (int32_t y = 0; y < map.plan.height; y++) {
        const Range inside = map.PartInside(map.Row(y), 0);
        std::memcpy(canvas.to.Row(y), canvas.fillRow.data, static_cast<size_t>(canvas.to.stride));
        std::memset(canvas.coverage.Row(y) + inside.first, 255, static_cast<size_t>(inside.last - inside.first));
    }
    ForEachTileRow(map.plan.width, map.plan.height, [&](int32_t y, Range tile) {
        const SourceRow start = map.Row(y);
        const Range inside = Common(map.PartInside(start, 0), tile);
        for (int32_t x = inside.first; x < inside.last; x++) {
            const auto column = static_cast<int32_t>((start.x + x * map.stepX) >> kFractionBits);
            const auto row = static_cast<int32_t>((start.y + x * map.stepY) >> kFractionBits);
            DibSetPixel(canvas.to, x, y, DibGetPixel(from, column, row));
        }
    });
}

} // namespace

RotatedPicture RotateDirect(const ReadView &from, const RotationPlan &plan, bool interpolate) {
    RotationCanvas canvas(from, plan);
    if (!canvas) return {};
    const SourceMap map(plan, from);
    if (interpolate && HasBytePixels(from.bits))
        MixRows(canvas, from, map);
    else
        PickRows(canvas, from, map);
    return canvas.Finish();
}

} // namespace lmf
