// Whole degrees as directions, the same on every system.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace lmf {

/// A unit vector in 65536ths.
struct Direction {
    static constexpr int32_t kOne = 65536;

    int32_t cosine, sine;
};

/// The direction of an angle in degrees. Whole degrees are so far from the borders between two 65536ths that no
/// system's library rounds them differently.
inline Direction DirectionOf(int32_t degrees) {
    const double angle = degrees * (std::numbers::pi / 180);
    return {static_cast<int32_t>(std::lround(std::cos(angle) * Direction::kOne)),
            static_cast<int32_t>(std::lround(std::sin(angle) * Direction::kOne))};
}

} // namespace lmf
