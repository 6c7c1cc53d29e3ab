#include "image/geometry/transpose.h"

#include <cstring>

namespace lmf {

namespace {

constexpr ptrdiff_t kTile = 16;

typedef uint8_t ByteVector __attribute__((vector_size(kTile)));

/// A 16 x 16 tile in registers: interleaving rows i and i + 8 four times over makes them columns.
void TransposeTile(uint8_t *to, ptrdiff_t toStride, const uint8_t *from, ptrdiff_t fromStride) {
    ByteVector rows[kTile], mixed[kTile];
    for (int i = 0; i < kTile; i++) std::memcpy(&rows[i], from + i * fromStride, sizeof rows[i]);
    for (int round = 0; round < 4; round++) {
        for (int i = 0; i < kTile / 2; i++) {
            const ByteVector a = rows[i], b = rows[i + kTile / 2];
            mixed[2 * i] = __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
            mixed[2 * i + 1] =
                __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
        }
        std::memcpy(rows, mixed, sizeof rows);
    }
    for (int i = 0; i < kTile; i++) std::memcpy(to + i * toStride, &rows[i], sizeof rows[i]);
}

} // namespace

void TransposeBytes(uint8_t *to, ptrdiff_t toStride, const uint8_t *from, ptrdiff_t fromStride, ptrdiff_t rows,
                    ptrdiff_t rowBytes) {
    for (ptrdiff_t b = 0; b < rowBytes; b += kTile) {
        for (ptrdiff_t r = 0; r < rows; r += kTile) {
            if (r + kTile <= rows && b + kTile <= rowBytes) {
                TransposeTile(to + b * toStride + r, toStride, from + r * fromStride + b, fromStride);
                continue;
            }
            for (ptrdiff_t i = r; i < rows && i < r + kTile; i++) {
                for (ptrdiff_t j = b; j < rowBytes && j < b + kTile; j++)
                    to[j * toStride + i] = from[i * fromStride + j];
            }
        }
    }
}

} // namespace lmf
