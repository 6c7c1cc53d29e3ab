// Colours without a picture.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Index of the entry nearest to a colour among the first `count`, by 3 dr^2 + 4 dg^2 + 2 db^2; an exact match wins at
/// once, of equal distances the lowest index. 0 for a count below 1.
[[nodiscard]] int32_t PaletteNearest(int32_t red, int32_t green, int32_t blue, const Palette768 &palette,
                                     int32_t count);

/// Mix of two colours in single precision: t = 0 gives the first, 1 the second.
[[nodiscard]] Color MixColors(Color color0, Color color1, float t);

} // namespace lmf
