// Divisions by 255 that loops over bytes do in wide lanes.
#pragma once

#include <cstdint>

namespace lmf {

/// value / 255 for values up to 65534, in 16 bits.
constexpr uint16_t Div255(uint16_t value) {
    return static_cast<uint16_t>((value + 1 + (value >> 8)) >> 8);
}

/// value / 255 rounded to the nearest whole number, for values up to 65407, in 16 bits.
constexpr uint16_t RoundedDiv255(uint16_t value) {
    return Div255(static_cast<uint16_t>(value + 127));
}

/// WeightedGrey of bytes in 16 bits.
constexpr uint8_t ByteGrey(uint8_t red, uint8_t green, uint8_t blue) {
    return static_cast<uint8_t>(Div255(static_cast<uint16_t>(red * 77)) + Div255(static_cast<uint16_t>(green * 150)) +
                                Div255(static_cast<uint16_t>(blue * 28)));
}

/// Mix of two channels by the other one's weight, 0 to 255, each share truncated on its own.
constexpr uint8_t MixBytes(uint8_t channel, uint8_t other, uint8_t otherWeight) {
    return static_cast<uint8_t>(Div255(static_cast<uint16_t>(channel * (255 - otherWeight))) +
                                Div255(static_cast<uint16_t>(other * otherWeight)));
}

} // namespace lmf
