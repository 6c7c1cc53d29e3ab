// Rotations by any angle, behind Rotate.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// A rotation and the picture that it makes.
struct RotationPlan {
    double sine, cosine;   ///< of the angle, anticlockwise
    int32_t width, height; ///< of the result; the picture's middle comes to lie in its middle
    uint32_t fill;         ///< pixel value of what the picture does not cover
};

/// A rotated picture and how much of each of its pixels the source covers, 8-bit grey, 255 for all of it.
struct RotatedPicture {
    DibOwner picture;
    DibOwner coverage;
};

/// Reads each pixel back from the source: mixed from four neighbours at 8, 24 and 32 bits where `interpolate` is set,
/// else the nearest one, at any depth. Edges of mixed pictures are anti-aliased. Empty handles on failure.
[[nodiscard]] RotatedPicture RotateDirect(const ReadView &from, const RotationPlan &plan, bool interpolate);

/// The same for up to 45 degrees either way by three shears (Paeth, 1986), each with a windowed sinc along whole lines,
/// which keeps fine detail. 8, 24 and 32 bits only. Empty handles on failure.
[[nodiscard]] RotatedPicture RotateByShears(const ReadView &from, const RotationPlan &plan);

} // namespace lmf
