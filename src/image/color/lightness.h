// Changes of colour that keep the lightness of the HSL model.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Adds to the channels, limits them to bytes and brings the pixel's lightness back. Alpha becomes 0, and the hue is
/// rounded a little even where nothing is added.
[[nodiscard]] Color ShiftKeepingLightness(Color pixel, int32_t red, int32_t green, int32_t blue);

} // namespace lmf
