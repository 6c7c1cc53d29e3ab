// Rows of pixels in other forms: as bytes, as 24-bit colours, as grey, as packed bits.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Bytes a pixel where rows of any depth are taken as bytes: 1, the index, up to 8 bits, else 3 (blue, green, red).
constexpr int32_t ByteChannels(uint32_t bits) {
    return bits >= 1 && bits <= 8 ? 1 : 3;
}
/// Row y, counted from the top, as bytes. Alpha is dropped; what DibGetPixel reads as kOutside (white of full alpha,
/// and depths that cannot be read) becomes `outside`.
void ReadByteRow(uint8_t *bytes, const ReadView &picture, int32_t y, Color outside = 0xFFFFFF);
/// Row y, counted from the top, as three bytes a pixel at every depth: indexes are red alone.
void ReadBgrRow(uint8_t *bgr, const ReadView &picture, int32_t y);
/// Stores bytes as row y, counted from the top: alpha becomes 0, indexes are cut to the bits there are. The bytes may
/// lie at the start of the row itself.
void WriteByteRow(const WriteView &picture, int32_t y, const uint8_t *bytes);

/// The colours of a row of 32-bit pixels, which must not overlap the result, as 24-bit pixels.
void DropAlphaRow(uint8_t *bgr, const uint8_t *bgra, int32_t width);
/// WeightedGrey of a row of 24-bit pixels, which must not overlap the result.
void GreyRow(uint8_t *grey, const uint8_t *bgr, int32_t width);
/// A row of 24-bit pixels mixed with a colour by a weight a pixel: 0 keeps the pixel, 255 gives the colour. Nothing may
/// overlap the result.
void TintRow(uint8_t *to, const uint8_t *from, const uint8_t *weights, int32_t width, Color color);

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
