// Rows of pixels from right to left.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lmf {

/// Writes `count` pixels of `pixelBytes` bytes (1, 3 or 4) in reverse order. The rows do not overlap.
void ReversePixels(uint8_t *to, const uint8_t *from, size_t count, size_t pixelBytes);

} // namespace lmf
