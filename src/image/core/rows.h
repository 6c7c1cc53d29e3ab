// Rows of pixels in other forms: as 24-bit colours, as grey, as packed bits.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// The colours of a row of 32-bit pixels, which must not overlap the result, as 24-bit pixels.
void DropAlphaRow(uint8_t *bgr, const uint8_t *bgra, int32_t width);
/// WeightedGrey of a row of 24-bit pixels, which must not overlap the result.
void GreyRow(uint8_t *grey, const uint8_t *bgr, int32_t width);

/// Lays a colour over a row of 24-bit pixels, by as many of 255 parts as the mask says for each pixel. No row overlaps
/// another.
void TintRow(uint8_t *to, const uint8_t *from, const uint8_t *mask, int32_t width, Color color);

/// WeightedGrey of row y, counted from the top, at any depth. An index counts as the red of a pixel without green and
/// blue.
void ReadGreyRow(uint8_t *grey, const ReadView &picture, int32_t y);

/// Packs one byte a pixel, 0 or 1, into the bits of a 1-bit row. `flags` has room for `width` rounded up to 8; what
/// lies behind `width` must be 0.
void PackMonoRow(uint8_t *row, const uint8_t *flags, int32_t width);
/// Packs one byte a pixel, 0 to 15, into the nibbles of a 4-bit row. `indexes` is readable up to an even width; what
/// lies behind `width` must be 0.
void PackNibbleRow(uint8_t *row, const uint8_t *indexes, int32_t width);

/// Writes a row, counted as rows lie in memory, as 24-bit pixels: indexes go through the palette, alpha is dropped,
/// depths that cannot be read give what DibGetPixel says.
void ReadRgbRow(uint8_t *bgr, const ReadView &picture, const Palette768 &palette, int32_t memoryRow);

/// The rows of a locked picture as 24-bit pixels. Borrows the lock.
struct RgbRows {
    const ReadView &picture;
    Palette768 palette; ///< the picture's own
    BlockArray<uint8_t> buffer;

    explicit RgbRows(const ReadView &picture);
    /// False when there was no memory.
    explicit operator bool() const { return picture.bits == 24 || buffer; }
    /// A row counted as rows lie in memory, good until the next call.
    const uint8_t *MemoryRow(int32_t y);
};

} // namespace lmf
