// Convolution with a square of weights on a picture that wraps around at its edges.
#pragma once

#include <optional>

#include "image/core/dib.h"

namespace lmf {

/// A square of weights, empty until BuildBell has filled it.
using SquareKernel = std::optional<BlockArray<double>>;

/// Fills a square of odd side `order` with a bell curve, exp(-r^2 / sigma^2) at the distance r from its centre, in
/// pixels.
/// @return false when memory is short or the side is below 1 or beyond any picture
[[nodiscard]] bool BuildBell(int32_t order, double sigma, SquareKernel *kernel);

/// Each channel becomes the weighted sum of its square of neighbours, divided by the sum of the weights where that is
/// neither 0 nor 1, rounded and limited to 0..255. Opposite edges of the picture are neighbours.
/// @param order   side of the square, odd and no larger than the picture
/// @param kernel  order * order weights, row after row as the rows lie in memory
/// @return a new picture of the source's depth and palette (blank unless the mode is true colour or grey), or
/// null.
[[nodiscard]] DibHandle ConvolveSquare(const ReadView &picture, int32_t order, const double *kernel, int32_t mode);

} // namespace lmf
