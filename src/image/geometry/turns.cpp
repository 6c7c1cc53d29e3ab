// Quarter turns go through square blocks, small enough that the rows of both pictures stay in the fast caches while a
// block is turned, and wide enough to use whole cache lines: walking whole columns would miss at every pixel.
#include "image/geometry/turns.h"

#include <algorithm>
#include <cstring>

#include "image/geometry/reverse.h"
#include "image/geometry/transpose.h"

namespace lmf {

namespace {

constexpr int32_t kBlockSide = 64;

/// Calls visit(left, top, right, bottom) for the blocks of a picture; right and bottom are exclusive.
template <typename Visit>
void ForEachBlock(const ReadView &view, Visit visit) {
    for (int32_t top = 0; top < view.height; top += kBlockSide) {
        const int32_t bottom = std::min(top + kBlockSide, view.height);
        for (int32_t left = 0; left < view.width; left += kBlockSide)
            visit(left, top, std::min(left + kBlockSide, view.width), bottom);
    }
}

/// Pixel (x, y) of the result is at origin + x * across + y * down.
template <size_t kBytes>
void TurnBytes(const WriteView &to, const uint8_t *origin, ptrdiff_t across, ptrdiff_t down) {
    ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
        for (int32_t y = top; y < bottom; y++) {
            const uint8_t *from = origin + left * across + y * down;
            uint8_t *target = to.Row(y) + static_cast<size_t>(left) * kBytes;
            for (int32_t x = left; x < right; x++, from += across, target += kBytes) std::memcpy(target, from, kBytes);
        }
    });
}

/// The same for bytes; `down` is 1 or -1.
void TransposeBlocks(const WriteView &to, const uint8_t *origin, ptrdiff_t across, ptrdiff_t down) {
    ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
        const int32_t firstRow = down > 0 ? top : bottom - 1;
        TransposeBytes(to.Row(firstRow) + left, -down * to.stride, origin + left * across + firstRow * down, across,
                       right - left, bottom - top);
    });
}

void TurnQuarter(const WriteView &to, const ReadView &from, bool clockwise) {
    const auto bytes = static_cast<ptrdiff_t>(from.bits / 8);
    const ptrdiff_t across = clockwise ? from.stride : -from.stride;
    const ptrdiff_t down = clockwise ? bytes : -bytes;
    const uint8_t *origin = clockwise ? from.bottom : from.Row(0) + (from.width - 1) * bytes;
    switch (from.bits) {
    case 32:
        return TurnBytes<4>(to, origin, across, down);
    case 24:
        return TurnBytes<3>(to, origin, across, down);
    case 8:
        return TransposeBlocks(to, origin, across, down);
    default:
        ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
            for (int32_t y = top; y < bottom; y++) {
                for (int32_t x = left; x < right; x++) {
                    const int32_t fromX = clockwise ? y : to.height - 1 - y;
                    const int32_t fromY = clockwise ? to.width - 1 - x : x;
                    DibSetPixel(to, x, y, DibGetPixel(from, fromX, fromY));
                }
            }
        });
    }
}

void TurnHalf(const WriteView &to, const ReadView &from) {
    const int32_t width = from.width, height = from.height;
    const uint32_t bits = from.bits;
    for (int32_t y = 0; y < height; y++) {
        if (HasBytePixels(bits)) {
            ReversePixels(to.MemoryRow(y), from.Row(y), static_cast<size_t>(width), bits / 8);
            continue;
        }
        for (int32_t x = 0; x < width; x++) DibSetPixel(to, x, y, DibGetPixel(from, width - 1 - x, height - 1 - y));
    }
}

/// Makes the result and has turn(to, source) fill it.
template <typename Turn>
DibHandle MakeTurned(const ReadView &source, int32_t width, int32_t height, Turn turn) {
    LockedDib result(DibCreateLike(source, width, height));
    if (!result) return nullptr;
    turn(result.View(), source);
    return result.Release();
}

} // namespace

DibHandle DibTurnClockwise(const ReadView &source) {
    return MakeTurned(source, source.height, source.width,
                      [](const WriteView &to, const ReadView &from) { TurnQuarter(to, from, true); });
}

DibHandle DibTurnAnticlockwise(const ReadView &source) {
    return MakeTurned(source, source.height, source.width,
                      [](const WriteView &to, const ReadView &from) { TurnQuarter(to, from, false); });
}

DibHandle DibTurnHalf(const ReadView &source) {
    return MakeTurned(source, source.width, source.height, TurnHalf);
}

} // namespace lmf
