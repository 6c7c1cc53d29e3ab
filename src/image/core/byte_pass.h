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
/// in a copy of the source and narrowed at the end: dropped alpha becomes 0, indexes are cut to the bits there are, and
/// pixels that cannot be read are all ones. False where memory is short or a side of the result is below 1.
struct BytePass {
    /// The result has the source's size.
    explicit BytePass(const ReadView &source, Alpha alpha = Alpha::Dropped);
    /// The result has a size of its own.
    BytePass(const ReadView &source, int32_t width, int32_t height, Alpha alpha = Alpha::Dropped);

    explicit operator bool() const { return made; }
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
