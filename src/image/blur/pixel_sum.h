// The mean of many 24-bit pixels from scattered places.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace lmf {

/// Channel sums of up to 257 pixels, kept as 16-bit fields of wider numbers.
struct PixelSum {
    uint64_t blueRed = 0; ///< blue from bit 8, red from bit 24
    uint64_t green = 0;   ///< from bit 16

    /// Adds the pixel whose blue byte is at `pixel`. The byte before it is read, too: there always is one, since a
    /// header precedes the rows.
    void Add(const uint8_t *pixel) {
        uint32_t four;
        std::memcpy(&four, pixel - 1, sizeof four);
        blueRed += four & 0xFF00FF00;
        green += four & 0x00FF0000;
    }

    /// Writes the truncated means as a pixel. `reciprocal` is that of the number of pixels.
    void WriteMean(uint8_t *pixel, uint32_t reciprocal) const {
        pixel[0] = static_cast<uint8_t>((blueRed >> 8 & 0xFFFF) * reciprocal >> 24);
        pixel[1] = static_cast<uint8_t>((green >> 16) * reciprocal >> 24);
        pixel[2] = static_cast<uint8_t>((blueRed >> 24) * reciprocal >> 24);
    }
};

inline constexpr int32_t kMostPixelsOfSum = 256;

/// 2^24 / count, rounded up: a product with a sum of `count` bytes, shifted right by 24, is their exact truncated mean,
/// as the error of the product stays below 255 * count^2 <= 2^24.
inline constexpr std::array<uint32_t, kMostPixelsOfSum + 1> kReciprocals = [] {
    std::array<uint32_t, kMostPixelsOfSum + 1> reciprocals{};
    for (uint32_t count = 1; count < reciprocals.size(); count++) reciprocals[count] = ((1u << 24) + count - 1) / count;
    return reciprocals;
}();

} // namespace lmf
