// The frame of a filter that works on rows of bytes, whatever the picture's depth is.
#pragma once

#include "image/core/pixel_pass.h"

namespace lmf {

/// A source and the blank picture of its size and depth that becomes the result, both seen as rows of one byte a pixel
/// (up to 8 bits: the index) or three (blue, green, red). Depths that are not so are widened in a copy of the source
/// and narrowed at the end: alpha is dropped and becomes 0, and indexes are cut to the bits there are. False where
/// memory is short.
struct BytePass {
    /// What DibGetPixel reads as kOutside in the source itself (white of full alpha at 32 bits, and everything at
    /// depths that cannot be read) is seen as `outside`.
    explicit BytePass(const ReadView &source, Color outside = 0xFFFFFF);

    explicit operator bool() const { return made; }
    /// Was it made, and of a picture of colours? For filters that have no meaning on indexes.
    bool IsColor() const { return made && Channels() == 3; }
    /// The source's rows: 8 or 24 bits, whatever its depth.
    const ReadView &From() const { return from; }
    /// The result's rows in the same form, for any order of writing.
    const WriteView &To() const { return to; }
    /// Bytes a pixel: 1 or 3.
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
