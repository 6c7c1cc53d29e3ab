// The frame of a filter whose result has the size of its source.
#pragma once

#include "image/dib.h"

namespace lmf {

enum class ResultPalette : uint8_t {
    OfSource, ///< the source's colour table
    Black     ///< all entries 0
};

/// A locked source and the blank picture of its size that becomes the result; false where the source cannot be locked
/// or the result cannot be made.
struct PixelPass {
    DibLock from;
    DibOwner result;
    DibLock to;

    /// The result has the source's depth.
    explicit PixelPass(DibHandle source, ResultPalette palette = ResultPalette::OfSource);
    /// The result has the depth and the palette that DibCreate makes of these.
    PixelPass(DibHandle source, uint32_t depth, const Palette768 *palette);

    explicit operator bool() const { return static_cast<bool>(to); }
    /// Ends both locks and gives the result to the caller.
    [[nodiscard]] DibHandle Finish();
};

} // namespace lmf
