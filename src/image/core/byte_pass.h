// The frame of a filter that works on rows of bytes, whatever the picture's depth is.
#pragma once

#include "image/core/pixel_pass.h"

namespace lmf {

/// A source and the blank picture of its size and depth that becomes the result, both seen as rows of one byte a pixel
/// (up to 8 bits: the index) or three (blue, green, red). Depths that are not so are widened in a copy of the source
/// and narrowed at the end: alpha is dropped and becomes 0, indexes are cut to the bits there are, and pixels that
/// cannot be read are all ones. False where memory is short.
struct BytePass {
    explicit BytePass(const ReadView &source);

    explicit operator bool() const { return made; }
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
