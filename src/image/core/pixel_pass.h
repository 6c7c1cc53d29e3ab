// The frame of a filter whose result has the size of its source.
#pragma once

#include "image/core/dib.h"

namespace lmf {

enum class ResultPalette : uint8_t {
    OfSource, ///< the source's colour table
    Black     ///< all entries 0
};

/// A source and the blank picture of its size that becomes the result; false where that cannot be made.
struct PixelPass {
    const ReadView from;
    LockedDib result;
    const WriteView to;

    /// The result has the source's depth.
    explicit PixelPass(const ReadView &source, ResultPalette palette = ResultPalette::OfSource);
    /// The result has the depth and the palette that DibCreate makes of these.
    PixelPass(const ReadView &source, uint32_t depth, const Palette768 *palette);

    explicit operator bool() const { return static_cast<bool>(result); }
    /// Gives the result to the caller.
    [[nodiscard]] DibHandle Finish() { return result.Release(); }
};

} // namespace lmf
