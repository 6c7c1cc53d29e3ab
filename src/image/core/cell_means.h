// Means over the cells of a grid that is laid over a picture.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Widest and highest cell.
inline constexpr int32_t kLargestCell = 128;

/// The mean colours of a row of cells, and the sums that they come from.
struct CellMeans {
    /// For rows of pixels of one byte or three, and cells of which the first one has lost its first columns, fewer than
    /// it has: 0 <= firstCut < widthOfCells <= kLargestCell.
    CellMeans(int32_t rowWidth, int32_t rowChannels, int32_t widthOfCells, int32_t firstCut = 0);
    /// False when there was no memory.
    explicit operator bool() const { return sums && row; }

    /// Takes the cells that cover the rows top <= y < bottom of a picture of this width, at most kLargestCell of them.
    /// @return a row of pixels, each the truncated mean of its cell; good until the next call.
    uint8_t *Of(const ReadView &picture, int32_t top, int32_t bottom);

private:
    int32_t width, channels, cellWidth, cut;
    BlockArray<uint16_t> sums; ///< of each byte's column
    BlockArray<uint8_t> row;
};

} // namespace lmf
