// Pixels that are only partly there: colours laid over rows by a mask, and what the "Alpha" boxes leave in the second
// picture.
//
// A coverage is an 8-bit grey picture of the result's size: 255 where a pixel of the result is there, 0 where it is
// not. It becomes the second result like this:
//
//     LockedDib coverage(DibCreateGrey(width, height));
//     if (!coverage) return nullptr;
//     ... draw into coverage.View() ...
//     ReplaceSecond(context, AlphaFromCoverage(std::move(coverage), context.second));
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Multiplies the second picture that came in, whose top left pixel lies at (x, y) of the coverage, into the coverage.
/// Its pixels' low bytes count, and each product is divided by 255 and truncated. Where it does not reach, or where it
/// is null or cannot be locked, the coverage stays.
/// @param coverage  8-bit grey and locked; taken over
/// @return the coverage, which the caller owns
[[nodiscard]] DibHandle AlphaFromCoverage(LockedDib coverage, DibHandle second, int32_t x = 0, int32_t y = 0);

/// Lays a colour over a row of 24-bit pixels where the mask is high: 0 leaves a pixel as it is, 255 gives the colour,
/// and what lies between is a mix whose two shares are truncated, each on its own.
void TintRow(uint8_t *bgr, const uint8_t *mask, int32_t width, Color color);

} // namespace lmf
