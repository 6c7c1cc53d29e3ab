// Turns by quarters, which lose nothing: every pixel moves as it is.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// The picture turned a quarter to the right, with the same depth and palette: a new picture of height x width pixels
/// that the caller owns, or null. Pixels of depths without pixel access count as DibGetPixel reads them.
[[nodiscard]] DibHandle DibTurnClockwise(const ReadView &source);
/// The same, turned a quarter to the left.
[[nodiscard]] DibHandle DibTurnAnticlockwise(const ReadView &source);
/// The same, turned upside down: a new picture of width x height pixels.
[[nodiscard]] DibHandle DibTurnHalf(const ReadView &source);

} // namespace lmf
