// Pictures of two colours that run into each other.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// How the colours run; the numbers are those of the setting.
enum GradientType : int32_t {
    kGradientLinear,    ///< in straight bands, the second colour first; the place has no say
    kGradientConic,     ///< around a point, there and back
    kGradientSpherical, ///< in ellipses from the first colour to the second; the angle has no say, as with the next
    kGradientCubic      ///< in rectangles
};

/// Paints a gradient.
/// @param offsetX, offsetY  how far its middle lies from that of the picture, in percent of the sides
/// @param angle             degrees clockwise, 0 to 360
/// @param type              a GradientType; any other one is kGradientCubic
/// @return a new 24-bit picture that the caller owns; null for a side below 1 or without memory
[[nodiscard]] DibHandle GradientPicture(Color color1, Color color2, int32_t width, int32_t height, int32_t offsetX,
                                        int32_t offsetY, int32_t angle, int32_t type);

} // namespace lmf
