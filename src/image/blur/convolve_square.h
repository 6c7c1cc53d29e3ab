// Convolution with a square of weights on a picture that wraps around at its edges.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// A square of weights of odd side `order`, row after row as the rows lie in memory.
struct SquareKernel {
    static constexpr int32_t kMostOrder = 15;

    int32_t order;
    double weights[kMostOrder * kMostOrder];
};

/// A square of odd side `order`, up to kMostOrder, with a bell curve: exp(-r^2 / sigma^2) at the distance r from its
/// centre, in pixels.
[[nodiscard]] SquareKernel BellKernel(int32_t order, double sigma);

/// Each channel becomes the weighted sum of its square of neighbours, divided by the sum of the weights where that is
/// neither 0 nor 1, rounded and limited to 0..255. Opposite edges of the picture are neighbours.
/// @return a new picture of the source's depth and palette (blank unless the mode is true colour or grey), or null, as
/// for a picture that is smaller than the square
[[nodiscard]] DibHandle ConvolveSquare(const ReadView &picture, const SquareKernel &kernel, int32_t mode);

} // namespace lmf
