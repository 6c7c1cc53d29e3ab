// A palette from a picture (M. Gervautz and W. Purgathofer, "A Simple Method for Color Quantization: Octree
// Quantization", 1988).
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Fills `palette` with at most `*count` colours (0 or above 256 reads as 256) for a 24-bit picture and sets `*count`
/// to their number; further entries are black. A picture of no more colours gets them in the order of their first
/// appearance, but for the 256th: it is taken as black, and only when it is new in the very last pixel.
/// @return false if the picture has another depth or memory is short.
[[nodiscard]] bool OctreePalette(const ReadView &picture, Palette768 *palette, uint32_t *count);

} // namespace lmf
