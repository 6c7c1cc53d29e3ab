// Interpolated reads between pixels, as Swirl, Implode and Explode take them.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Bilinear mix of the four pixels around (x + 0.5, y + 0.5) of a picture of any depth: three channels, the top byte 0.
/// The half step belongs to the filters' results. Neighbours outside the picture count as `background`; so does the
/// whole of a position beyond the outermost neighbours.
[[nodiscard]] uint32_t WarpSampleBilinear(const ReadView &picture, double x, double y, uint32_t background);

/// Stores WarpSampleBilinear(from, xs[x], ys[x], background) at left <= x < right of row y of a picture that has the
/// depth of `from`: 8, 24 or 32 bits, of which a fourth byte stays.
void WarpSampleRow(const WriteView &to, int32_t y, const ReadView &from, int32_t left, int32_t right, const double *xs,
                   const double *ys, uint32_t background);

} // namespace lmf
