// Work at a multiple of the picture's size, so that hard edges come out smooth.
#pragma once

#include "image/scale/resample.h"

namespace lmf {

/// Makes change(picture), which keeps the size, at four times the width and height and brings it back to the size of
/// the source; null on failure.
template <typename Change>
[[nodiscard]] DibHandle Supersample(const ReadView &source, Change change) {
    const LockedDib enlarged(DibScalePercent(source, 400, 400, kWindowAutomatic));
    if (!enlarged) return nullptr;
    const LockedDib changed(change(ReadView(enlarged)));
    return changed ? DibScalePercent(changed, 25, 25, kWindowAutomatic) : nullptr;
}

} // namespace lmf
