// The filtered scaler: a separable resampler in double precision with a choice of windows.
//
// Functions that return a DibHandle give the caller a new picture of the source's depth and palette or null, and leave
// the source alone. Depths other than 8, 24 and 32 have nothing to filter and come out blank.
#pragma once

#include "image/core/dib.h"
#include "image/core/row_call.h"

namespace lmf {

/// Names of the windows 0 to 15, as the lists on pages show them.
inline constexpr const char *kResampleWindowList =
    "Automatic;Point;Box;Triangle;Hermite;Hanning;Hamming;Blackman;Gaussian;Quadratic;Cubic;Catrom;Mitchell;Lanczos;"
    "Bessel;Sinc";

/// Window that takes Mitchell for pictures that gain pixels and Lanczos for all others.
inline constexpr int32_t kWindowAutomatic = 0;
inline constexpr int32_t kWindowMitchell = 12;
inline constexpr int32_t kWindowLanczos = 13;

/// Weight of a sample at the signed distance `x`, in source pixels, by a window of this support.
using ResampleWeight = double (*)(double x, double support);

struct ResampleWindow {
    ResampleWeight weight;
    double support; ///< source pixels on either side of the centre
};

/// The windows in the order of their names; the row of "Automatic" is never used for weights.
extern const ResampleWindow kResampleWindows[16];

/// The picture at newWidth x newHeight pixels; a blur above 1 widens the window. The window index is limited to 0..15;
/// a copy where neither size nor blur ask for a change. Null when a side is below 1.
[[nodiscard]] DibHandle DibScale(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex,
                                 double blur);
/// DibScale without blur.
[[nodiscard]] DibHandle DibScaleTo(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex);
/// DibScale to percentages of both sides, rounded to the nearest pixel.
[[nodiscard]] DibHandle DibScalePercent(const ReadView &source, int32_t percentX, int32_t percentY,
                                        int32_t windowIndex);

/// DibScaleTo without either picture: fill(y, row) writes row y of the source, take(y, row) gets row y of the result
/// and may change it. Both are called from the top down; rows of the source that nothing depends on are left out.
/// Holds 8 MiB of the source, up to 512 rows, but at least three times as many as weigh in on a row of the result.
/// @return false when a side is below 1 or memory is short.
[[nodiscard]] bool ScaleRows(const RowFormat &from, RowCall fill, int32_t newWidth, int32_t newHeight,
                             int32_t windowIndex, RowCall take);

/// Shrinks one side of a box of pixels so that it has the picture's aspect.
void DibFitAspect(const ReadView &source, int32_t *width, int32_t *depth);

} // namespace lmf
