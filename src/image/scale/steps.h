// The integer scaler by whole percentages: means of whole samples to shrink, linear runs to enlarge.
//
// Each function gives the caller a new picture of the source's depth and palette or null, and leaves the source alone.
// 24 bits have three channels; 2 to 8 bits have their index as the one channel, which means something for grey. Of
// 32 bits a fourth channel comes out 0, and DibShrinkHorz takes each row as if it had three bytes a pixel.
#pragma once

#include "image/core/dib.h"
#include "image/core/row_call.h"

namespace lmf {

/// Columns reduced to `percent`, each the truncated mean of its share of the source; null when none would be left.
[[nodiscard]] DibHandle DibShrinkHorz(const ReadView &source, int32_t percent);
/// DibShrinkHorz for rows.
[[nodiscard]] DibHandle DibShrinkVert(const ReadView &source, int32_t percent);
/// Columns enlarged to `percent`, below 6000000, interpolated in truncated steps between neighbours.
[[nodiscard]] DibHandle DibEnlargeHorz(const ReadView &source, int32_t percent);
/// DibEnlargeHorz for rows.
[[nodiscard]] DibHandle DibEnlargeVert(const ReadView &source, int32_t percent);
/// Both axes: enlarges above 100 percent, shrinks below, copies at 100.
[[nodiscard]] DibHandle DibScaleSteps(const ReadView &source, int32_t percentX, int32_t percentY);

/// DibScaleSteps without either picture, for percentages of 1 to 100 and 8 or 24 bits: fill(y, row) writes row y of the
/// source, take(y, row) gets row y of the result and may change it. Both are called from the top down; rows of the
/// source below the last whole share are left out. Holds a row of each and the sums of one.
/// @return false when no pixel would be left or memory is short.
[[nodiscard]] bool ShrinkRows(const RowFormat &from, RowCall fill, int32_t percentX, int32_t percentY, RowCall take);

} // namespace lmf
