// Hue, saturation and value in single precision (A. R. Smith, "Color Gamut Transform Pairs", 1978).
#pragma once

#include "image/core/dib.h"

namespace lmf {

struct Hsv {
    float hue;        ///< degrees; -1 for black
    float saturation; ///< 0 to 1
    float value;      ///< 0 to 1
};

/// Every intermediate is single precision. Red wins a tie for the largest channel, then green.
[[nodiscard]] Hsv RgbToHsv(Color color);
/// Saturation and value are limited to 1 from above. The hue is not wrapped: a sector outside 0 to 4 counts as 5.
[[nodiscard]] Color HsvToRgb(const Hsv &hsv);

struct HsvChange {
    float hueOffset;       ///< degrees
    float saturationScale; ///< 1 for no change
    float valueScale;      ///< 1 for no change
};

/// Adds to the hue and scales saturation and value of a row of 24-bit pixels.
void AdjustHsvRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels, const HsvChange &change);

} // namespace lmf
