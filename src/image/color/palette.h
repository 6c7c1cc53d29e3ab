// Colours without a picture.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Weights of red, green and blue.
inline constexpr int32_t kDistanceWeights[3] = {3, 4, 2};

/// How far two colours lie apart, from the differences of their channels: green weighs most, blue least.
constexpr int32_t ColorDistance(int32_t red, int32_t green, int32_t blue) {
    return kDistanceWeights[0] * red * red + kDistanceWeights[1] * green * green + kDistanceWeights[2] * blue * blue;
}

/// Index of the entry nearest to a colour among the first `count` by ColorDistance; of equal distances the lowest
/// index. 0 for a count below 1.
[[nodiscard]] int32_t PaletteNearest(int32_t red, int32_t green, int32_t blue, const Palette768 &palette,
                                     int32_t count);

/// Mix of two colours in single precision: t = 0 gives the first, 1 the second.
[[nodiscard]] Color MixColors(Color color0, Color color1, float t);

} // namespace lmf
