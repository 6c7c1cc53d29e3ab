// Quarter turns go through square blocks, small enough that the rows of both pictures stay in the fast caches while a
// block is turned, and wide enough to use whole cache lines: walking whole columns would miss at every pixel.
#include "filters/geometry/turns.h"

#include <algorithm>
#include <cstring>

#include "image/reverse.h"
#include "image/transpose.h"

namespace lmf {

static constexpr int32_t kBlockSide = 64;

/// Calls visit(left, top, right, bottom) for the blocks of a picture; right and bottom are exclusive.
template <typename Visit>
static void ForEachBlock(const DibView &view, Visit visit) {
    for (int32_t top = 0; top < view.height; top += kBlockSide) {
        const int32_t bottom = std::min(top + kBlockSide, view.height);
        for (int32_t left = 0; left < view.width; left += kBlockSide)
            visit(left, top, std::min(left + kBlockSide, view.width), bottom);
    }
}

/// Pixel (x, y) of the result is at origin + x * across + y * down.
template <size_t kBytes>
static void TurnBytes(const DibView &to, const uint8_t *origin, ptrdiff_t across, ptrdiff_t down) {
    ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
        for (int32_t y = top; y < bottom; y++) {
            const uint8_t *from = origin + left * across + y * down;
            uint8_t *target = to.Row(y) + static_cast<size_t>(left) * kBytes;
            for (int32_t x = left; x < right; x++, from += across, target += kBytes) std::memcpy(target, from, kBytes);
        }
    });
}

/// The same for bytes; `down` is 1 or -1.
static void TransposeBlocks(const DibView &to, const uint8_t *origin, ptrdiff_t across, ptrdiff_t down) {
    ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
        const int32_t firstRow = down > 0 ? top : bottom - 1;
        TransposeBytes(to.Row(firstRow) + left, -down * to.stride, origin + left * across + firstRow * down, across,
                       right - left, bottom - top);
    });
}

static void TurnQuarter(const DibLock &to, const DibLock &from, bool clockwise) {
    const auto bytes = static_cast<ptrdiff_t>(from.view.bits / 8);
    const ptrdiff_t across = clockwise ? from.view.stride : -from.view.stride;
    const ptrdiff_t down = clockwise ? bytes : -bytes;
    const uint8_t *origin = clockwise ? from.view.bottom : from.view.Row(0) + (from.view.width - 1) * bytes;
    switch (from.view.bits) {
    case 32:
        return TurnBytes<4>(to.view, origin, across, down);
    case 24:
        return TurnBytes<3>(to.view, origin, across, down);
    case 8:
        return TransposeBlocks(to.view, origin, across, down);
    default:
        ForEachBlock(to.view, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
            for (int32_t y = top; y < bottom; y++) {
                for (int32_t x = left; x < right; x++) {
                    const int32_t fromX = clockwise ? y : to.view.height - 1 - y;
                    const int32_t fromY = clockwise ? to.view.width - 1 - x : x;
                    DibSetPixel(to.image, x, y, DibGetPixel(from.image, fromX, fromY));
                }
            }
        });
    }
}

static void TurnHalf(const DibLock &to, const DibLock &from) {
    const int32_t width = from.view.width, height = from.view.height;
    const uint32_t bits = from.view.bits;
    for (int32_t y = 0; y < height; y++) {
        if (HasBytePixels(bits)) {
            ReversePixels(to.view.MemoryRow(y), from.view.Row(y), static_cast<size_t>(width), bits / 8);
            continue;
        }
        for (int32_t x = 0; x < width; x++)
            DibSetPixel(to.image, x, y, DibGetPixel(from.image, width - 1 - x, height - 1 - y));
    }
}

/// Makes the result and has turn(to, from) fill it.
template <typename Turn>
static DibHandle MakeTurned(DibHandle source, bool swapSides, Turn turn) {
    DibLock from(source);
    if (!from) return nullptr;
    const DibView &view = from.view;
    DibOwner result(swapSides ? DibCreateLike(from, view.height, view.width)
                              : DibCreateLike(from, view.width, view.height));
    DibLock to(result.handle);
    if (!to) return nullptr;
    turn(to, from);
    to.Unlock();
    return result.Release();
}

DibHandle DibTurnClockwise(DibHandle source) {
    return MakeTurned(source, true, [](const DibLock &to, const DibLock &from) { TurnQuarter(to, from, true); });
}

DibHandle DibTurnAnticlockwise(DibHandle source) {
    return MakeTurned(source, true, [](const DibLock &to, const DibLock &from) { TurnQuarter(to, from, false); });
}

DibHandle DibTurnHalf(DibHandle source) {
    return MakeTurned(source, false, TurnHalf);
}

} // namespace lmf
