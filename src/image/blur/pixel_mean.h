// The mean of many 24-bit pixels from scattered places.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace lmf {

/// Pixels whose sums fit into fields of 16 bits.
inline constexpr int32_t kPixelsOfField = 256;

/// 2^24 / count, rounded up: a product with a sum of `count` bytes, shifted right by 24, is their exact truncated mean,
/// as the error of the product stays below 255 * count^2 <= 2^24.
inline constexpr std::array<uint32_t, kPixelsOfField + 1> kReciprocals = [] {
    std::array<uint32_t, kPixelsOfField + 1> reciprocals{};
    for (uint32_t count = 1; count < reciprocals.size(); count++) reciprocals[count] = ((1u << 24) + count - 1) / count;
    return reciprocals;
}();

/// Writes the truncated mean of `count` pixels, at least one. `place(i)` points to the blue byte of pixel i; the byte
/// before it is read, too: there always is one, since a header precedes the rows.
template <typename Place>
[[gnu::always_inline]] inline void WriteMean(uint8_t *pixel, int32_t count, Place place) {
    if (count > kPixelsOfField) {
        uint64_t sums[3] = {};
        for (int32_t i = 0; i < count; i++)
            for (size_t c = 0; c < 3; c++) sums[c] += place(i)[c];
        for (size_t c = 0; c < 3; c++) pixel[c] = static_cast<uint8_t>(sums[c] / static_cast<uint64_t>(count));
        return;
    }
    // Sums as fields of wider numbers: blue from bit 8 and red from bit 24, green from bit 16.
    uint64_t blueRed = 0, green = 0;
    for (int32_t i = 0; i < count; i++) {
        uint32_t four;
        std::memcpy(&four, place(i) - 1, sizeof four);
        blueRed += four & 0xFF00FF00;
        green += four & 0x00FF0000;
    }
    const uint64_t reciprocal = kReciprocals[static_cast<size_t>(count)];
    pixel[0] = static_cast<uint8_t>((blueRed >> 8 & 0xFFFF) * reciprocal >> 24);
    pixel[1] = static_cast<uint8_t>((green >> 16) * reciprocal >> 24);
    pixel[2] = static_cast<uint8_t>((blueRed >> 24) * reciprocal >> 24);
}

} // namespace lmf
