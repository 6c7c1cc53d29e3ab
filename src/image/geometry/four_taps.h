// The four neighbours that an interpolation mixes, in a form in which all channels of a pixel are one value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace lmf {

using ByteLanes = uint8_t __attribute__((vector_size(16)));
using IntLanes = int32_t __attribute__((vector_size(16)));
using FloatLanes = float __attribute__((vector_size(16)));
using DoubleLanes = double __attribute__((vector_size(32)));

/// A pixel of kBytes bytes to compute with: a plain number for one byte, else lanes of which the first kBytes count.
template <size_t kBytes, typename Number, typename Lanes>
using PixelValue = std::conditional_t<kBytes == 1, Number, Lanes>;
template <size_t kBytes>
using IntPixel = PixelValue<kBytes, int32_t, IntLanes>;
template <size_t kBytes>
using FloatPixel = PixelValue<kBytes, float, FloatLanes>;
template <size_t kBytes>
using DoublePixel = PixelValue<kBytes, double, DoubleLanes>;

/// Turn pixels from one kind of number into another; to integers they truncate.
template <typename To, typename From>
inline __attribute__((always_inline)) void ConvertPixel(To &to, const From &from) {
    if constexpr (std::is_arithmetic_v<To>)
        to = static_cast<To>(from);
    else
        to = __builtin_convertvector(from, To);
}

template <typename Pixel>
struct FourTaps {
    Pixel p00, p10, p01, p11;
};

template <typename To, typename From>
inline __attribute__((always_inline)) void ConvertTaps(FourTaps<To> &to, const FourTaps<From> &from) {
    ConvertPixel(to.p00, from.p00);
    ConvertPixel(to.p10, from.p10);
    ConvertPixel(to.p01, from.p01);
    ConvertPixel(to.p11, from.p11);
}

/// Reads columns x and x1 of two rows of pixels of kBytes bytes, 0 <= x < x1 < width. Of 24-bit pixels four bytes are
/// read at once, and those of the right column start one byte early, so that nothing behind the end of a picture is
/// touched.
template <size_t kBytes>
inline __attribute__((always_inline)) void ReadTaps(FourTaps<IntPixel<kBytes>> &taps, const uint8_t *row,
                                                    const uint8_t *nextRow, int32_t x, int32_t x1) {
    const ptrdiff_t left = x * static_cast<ptrdiff_t>(kBytes), right = x1 * static_cast<ptrdiff_t>(kBytes);
    if constexpr (kBytes == 1) {
        taps = {row[left], row[right], nextRow[left], nextRow[right]};
    } else {
        const auto lanes =
            [](IntLanes & to, const uint8_t *from, const IntLanes &shifts) __attribute__((always_inline)) {
            int32_t word;
            std::memcpy(&word, from, sizeof word);
            to = IntLanes{word, word, word, word} >> shifts & 255;
        };
        constexpr IntLanes kShifts = {0, 8, 16, 24}, kShiftsFromEarlier = {8, 16, 24, 24};
        constexpr ptrdiff_t kEarlier = kBytes == 3;
        const IntLanes rightShifts = kEarlier ? kShiftsFromEarlier : kShifts;
        lanes(taps.p00, row + left, kShifts);
        lanes(taps.p10, row + right - kEarlier, rightShifts);
        lanes(taps.p01, nextRow + left, kShifts);
        lanes(taps.p11, nextRow + right - kEarlier, rightShifts);
    }
}

/// Stores the first kBytes channels, cut to bytes.
template <size_t kBytes, typename Pixel>
inline __attribute__((always_inline)) void StorePixel(uint8_t *to, const Pixel &pixel) {
    if constexpr (std::is_arithmetic_v<Pixel>) {
        *to = static_cast<uint8_t>(pixel);
    } else {
        const auto all = reinterpret_cast<ByteLanes>(pixel);
        const ByteLanes bytes = __builtin_shufflevector(all, all, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12);
        std::memcpy(to, &bytes, kBytes);
    }
}

} // namespace lmf
