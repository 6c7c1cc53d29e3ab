// The four neighbours that an interpolation mixes, read from rows of 24-bit pixels into registers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lmf {

using ByteLanes = uint8_t __attribute__((vector_size(16)));
using IntLanes = int32_t __attribute__((vector_size(16)));

/// Blue, green and red of four pixels in lanes 0 to 2. What lane 3 holds has no meaning.
struct FourTaps {
    IntLanes p00, p10, p01, p11;
};

/// Reads columns x and x1 of two rows, 0 <= x < x1 < width. Four bytes are read for a pixel, and those of the right
/// column start one byte early, so that nothing behind the end of a picture is touched.
inline __attribute__((always_inline)) void ReadTaps24(FourTaps &taps, const uint8_t *row, const uint8_t *nextRow,
                                                      int32_t x, int32_t x1) {
    const auto lanes = [](IntLanes & to, const uint8_t *from, const IntLanes &shifts) __attribute__((always_inline)) {
        int32_t word;
        std::memcpy(&word, from, sizeof word);
        to = IntLanes{word, word, word, word} >> shifts & 255;
    };
    constexpr IntLanes kLeftShifts = {0, 8, 16, 24}, kRightShifts = {8, 16, 24, 24};
    lanes(taps.p00, row + static_cast<ptrdiff_t>(x) * 3, kLeftShifts);
    lanes(taps.p10, row + static_cast<ptrdiff_t>(x1) * 3 - 1, kRightShifts);
    lanes(taps.p01, nextRow + static_cast<ptrdiff_t>(x) * 3, kLeftShifts);
    lanes(taps.p11, nextRow + static_cast<ptrdiff_t>(x1) * 3 - 1, kRightShifts);
}

/// Stores lanes 0 to 2, cut to bytes, as a pixel.
inline __attribute__((always_inline)) void StoreLanes24(uint8_t *to, const IntLanes &lanes) {
    const auto all = reinterpret_cast<ByteLanes>(lanes);
    const ByteLanes bytes = __builtin_shufflevector(all, all, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12);
    std::memcpy(to, &bytes, 3);
}

} // namespace lmf
