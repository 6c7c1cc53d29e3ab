// The side of the square window of the filters that look at a neighbourhood of a given radius.
#pragma once

#include <cmath>
#include <cstdint>

namespace lmf {

/// Odd side of a window, in pixels: 2 * radius + 1 with the radius, which is above 0, rounded up.
[[nodiscard]] inline int32_t WindowWidth(double radius) {
    return 2 * static_cast<int32_t>(std::ceil(radius)) + 1;
}

} // namespace lmf
