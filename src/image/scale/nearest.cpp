#include "image/scale/nearest.h"

#include <algorithm>

namespace lmf {

namespace {

/// For each position along an axis the source position that it samples. The sum runs on as it is, so that its
/// rounding errors add up the same on every road through a picture.
void FillPositions(BlockArray<int32_t> &positions, int32_t newSize, int32_t size) {
    const double step = static_cast<double>(size) / newSize;
    double sum = 0.0;
    for (int32_t i = 0; i < newSize; i++) {
        positions[i] = std::min(static_cast<int32_t>(sum), size - 1);
        sum += step;
    }
}

void SampleBits(uint8_t *to, const uint8_t *from, const int32_t *columns, int32_t count) {
    for (int32_t x = 0; x < count; x++) {
        const int32_t at = columns[x];
        to[x >> 3] = static_cast<uint8_t>(to[x >> 3] | (from[at >> 3] >> (7 - (at & 7)) & 1) << (7 - (x & 7)));
    }
}

void SampleNibbles(uint8_t *to, const uint8_t *from, const int32_t *columns, int32_t count) {
    for (int32_t x = 0; x < count; x++) {
        const int32_t at = columns[x];
        const int32_t nibble = at & 1 ? from[at >> 1] & 15 : from[at >> 1] >> 4;
        to[x >> 1] = static_cast<uint8_t>(to[x >> 1] | (x & 1 ? nibble : nibble << 4));
    }
}

void SampleBytes(uint8_t *to, const uint8_t *from, const int32_t *columns, int32_t count) {
    for (int32_t x = 0; x < count; x++) to[x] = from[columns[x]];
}

/// `limit` is how many whole triples a row of the source holds: fewer than its pixels at depths below 24.
void SampleTriples(uint8_t *to, const uint8_t *from, const int32_t *columns, int32_t count, int64_t limit) {
    for (int32_t x = 0; x < count; x++) {
        if (columns[x] >= limit) return;
        const uint8_t *sample = from + columns[x] * int64_t{3};
        to[0] = sample[0];
        to[1] = sample[1];
        to[2] = sample[2];
        to += 3;
    }
}

} // namespace

DibHandle DibScaleNearest(const ReadView &source, int32_t percentX, int32_t percentY) {
    const int64_t newWidth = static_cast<int64_t>(percentX) * source.width / 100;
    const int64_t newHeight = static_cast<int64_t>(percentY) * source.height / 100;
    if (newWidth < 1 || newWidth > INT32_MAX || newHeight < 1 || newHeight > INT32_MAX) return nullptr;
    const uint32_t bits = source.bits;
    LockedDib result(DibCreateLike(source, static_cast<int32_t>(newWidth), static_cast<int32_t>(newHeight)));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    BlockArray<int32_t> columns(static_cast<uint64_t>(newWidth));
    BlockArray<int32_t> rows(static_cast<uint64_t>(newHeight));
    if (!columns || !rows) return nullptr;
    FillPositions(columns, to.width, source.width);
    FillPositions(rows, to.height, source.height);

    // Depths that are none of these are kept inside what a row of either picture holds.
    const auto triples = static_cast<int32_t>(std::min<int64_t>(newWidth, to.stride / 3));
    for (int32_t y = 0; y < to.height; y++) {
        uint8_t *toRow = to.MemoryRow(y);
        const uint8_t *fromRow = source.MemoryRow(rows[y]);
        switch (bits) {
        case 1:
            SampleBits(toRow, fromRow, columns.data, to.width);
            break;
        case 4:
            SampleNibbles(toRow, fromRow, columns.data, to.width);
            break;
        case 8:
            SampleBytes(toRow, fromRow, columns.data, to.width);
            break;
        default:
            SampleTriples(toRow, fromRow, columns.data, triples, source.stride / 3);
            break;
        }
    }
    return result.Release();
}

} // namespace lmf
