// The frame of a filter that works on rows of bytes, whatever the picture's depth is.
#pragma once

#include "image/core/pixel_pass.h"

namespace lmf {

/// What a BytePass makes of the fourth byte of 32-bit pixels.
enum class Alpha : uint8_t {
    Dropped, ///< not seen, and 0 in the result
    Carried  ///< a channel like the others
};

/// A source and the blank picture of its depth that becomes the result, both seen as rows of one byte a pixel (up to
/// 8 bits: the index) or three (blue, green, red), or four where alpha is carried. Depths that are not so are widened
/// in a copy of the source and narrowed at the end: dropped alpha becomes 0, and indexes are cut to the bits there are.
/// False where memory is short or a side of the result is below 1.
struct BytePass {
    /// The result has the source's size. What DibGetPixel reads as kOutside in the source itself (white of full alpha
    /// at 32 bits, and everything at depths that cannot be read) is seen as `outside`.
    explicit BytePass(const ReadView &source, Color outside = 0xFFFFFF)
        : BytePass(source, source.width, source.height, Alpha::Dropped, outside) {}
    /// The result has the source's size.
    BytePass(const ReadView &source, Alpha alpha) : BytePass(source, source.width, source.height, alpha) {}
    /// The result has a size of its own.
    BytePass(const ReadView &source, int32_t width, int32_t height, Alpha alpha = Alpha::Dropped,
             Color outside = 0xFFFFFF);

    explicit operator bool() const { return made; }
    /// Was it made, and of a picture of colours? For filters that have no meaning on indexes.
    bool IsColor() const { return made && Channels() == 3; }
    /// The source's rows: 8 or 24 bits, or 32 with alpha, whatever its depth.
    const ReadView &From() const { return from; }
    /// The result's rows in the same form, for any order of writing.
    const WriteView &To() const { return to; }
    /// Bytes a pixel: 1, 3 or 4.
    int32_t Channels() const { return static_cast<int32_t>(to.bits / 8); }
    /// Gives the result to the caller.
    [[nodiscard]] DibHandle Finish();

private:
    ReadView from;
    WriteView to;
    LockedDib wideSource; ///< the widened source, where that is needed
    LockedDib wideResult; ///< rows that the result has no room for
    LockedDib result;
    bool made = false;
};

} // namespace lmf
