// Rows of bytes turned into columns.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lmf {

/// Writes byte b of row r to byte r of row b. Strides are in bytes and may be negative; the areas do not overlap.
void TransposeBytes(uint8_t *to, ptrdiff_t toStride, const uint8_t *from, ptrdiff_t fromStride, ptrdiff_t rows,
                    ptrdiff_t rowBytes);

} // namespace lmf
