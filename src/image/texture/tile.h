// A small picture repeated over a large one.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// What each tone of a tile adds to the channels below it.
struct ToneOffsets {
    int16_t at[256];
};

/// New picture: every channel plus what the tile's pixel there adds, limited to a byte. The tile, of 8 bits, repeats
/// from the top left corner. Alpha becomes 0. Null on failure.
[[nodiscard]] DibHandle AddTile(const ReadView &source, const ReadView &tile, const ToneOffsets &offsets);

} // namespace lmf
