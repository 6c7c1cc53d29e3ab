// The corner of a picture that a setting names: where a shadow falls, what rolls up.
#pragma once

#include <cstdint>

namespace lmf {

/// Names of the corners 0 to 3, as the lists on pages show them.
inline constexpr const char *kCornerList = "Upper left;Upper right;Lower left;Lower right";

/// A corner as the side that it lies on along each axis.
struct Corner {
    bool isRight, isLower;

    /// @param index  0 to 3 of kCornerList
    explicit constexpr Corner(int32_t index) : isRight((index & 1) != 0), isLower((index & 2) != 0) {}
    /// The way towards it along each axis: 1 or -1.
    constexpr int32_t X() const { return isRight ? 1 : -1; }
    constexpr int32_t Y() const { return isLower ? 1 : -1; }
};

} // namespace lmf
