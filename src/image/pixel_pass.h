// The frame of a filter whose result has the size and depth of its source.
#pragma once

#include "image/dib.h"

namespace lmf {

enum class ResultPalette : uint8_t {
    OfSource, ///< the source's colour table
    Black     ///< all entries 0
};

/// A locked source and the blank picture of its size and depth that becomes the result.
struct PixelPass {
    DibLock from;
    DibOwner result;
    DibLock to;

    /// False afterwards where the source cannot be locked or the result cannot be made.
    explicit PixelPass(DibHandle source, ResultPalette palette = ResultPalette::OfSource);

    explicit operator bool() const { return static_cast<bool>(to); }
    /// Ends both locks and gives the result to the caller.
    [[nodiscard]] DibHandle Finish();
};

} // namespace lmf
