// The side of the square window of the filters that look at a neighbourhood of a given radius.
#pragma once

#include <cstdint>

namespace lmf {

/// Odd side of a window, in pixels: 2 * radius + 1 with the radius rounded up. Without a radius (0 or below) the widest
/// one, from 3 up, before the first whose outermost weight of a Gaussian of this sigma, scaled to 255, falls below 1.
[[nodiscard]] int32_t WindowWidth(double radius, double sigma);

} // namespace lmf
