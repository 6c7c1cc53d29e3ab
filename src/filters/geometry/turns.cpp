// Quarter turns go through square blocks, small enough that the rows of both pictures stay in the fast caches while a
// block is turned, and wide enough to use whole cache lines: walking whole columns would miss at every pixel.
#include "filters/geometry/turns.h"

#include <algorithm>
#include <cstring>

#include "image/reverse.h"

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

/// The same for bytes. Squares of 16 go through registers: interleaving the first half of 16 rows with the second four
/// times over swaps rows and columns.
static void TurnByteSquares(const DibView &to, const uint8_t *origin, ptrdiff_t across, ptrdiff_t down) {
    using Bytes16 = uint8_t __attribute__((vector_size(16)));
    constexpr Bytes16 kLowHalves = {0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23};
    constexpr Bytes16 kHighHalves = {8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31};
    const auto turnSquare = [&](int32_t left, int32_t top) {
        Bytes16 rows[16], woven[16];
        const uint8_t *from = origin + left * across + (down > 0 ? top : top + 15) * down;
        for (ptrdiff_t i = 0; i < 16; i++) std::memcpy(&rows[i], from + i * across, 16);
        for (int pass = 0; pass < 4; pass++) {
            for (int i = 0; i < 8; i++) {
                woven[i * 2] = __builtin_shuffle(rows[i], rows[i + 8], kLowHalves);
                woven[i * 2 + 1] = __builtin_shuffle(rows[i], rows[i + 8], kHighHalves);
            }
            std::memcpy(rows, woven, sizeof rows);
        }
        for (int32_t i = 0; i < 16; i++) std::memcpy(to.Row(down > 0 ? top + i : top + 15 - i) + left, &rows[i], 16);
    };
    ForEachBlock(to, [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
        const int32_t squaresRight = left + (right - left) / 16 * 16, squaresBottom = top + (bottom - top) / 16 * 16;
        for (int32_t y = top; y < squaresBottom; y += 16) {
            for (int32_t x = left; x < squaresRight; x += 16) turnSquare(x, y);
        }
        for (int32_t y = top; y < bottom; y++) {
            for (int32_t x = y < squaresBottom ? squaresRight : left; x < right; x++)
                to.Row(y)[x] = origin[x * across + y * down];
        }
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
        return TurnByteSquares(to.view, origin, across, down);
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
        if (bits == 8 || bits == 24 || bits == 32) {
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
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    const DibView &view = from.view;
    DibOwner result(
        DibCreate(swapSides ? view.height : view.width, swapSides ? view.width : view.height, &palette, view.bits));
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
