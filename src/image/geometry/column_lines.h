// Columns of a picture taken as lines of bytes that lie together, so that work along columns runs as fast as along
// rows.
#pragma once

#include "image/core/dib.h"
#include "image/geometry/transpose.h"

namespace lmf {

/// Makes the columns of `to` from those of `from`, pictures of the same width and of whole bytes a pixel:
/// work(i, toLine, fromLine) sees byte i of all rows, from the top, and leaves a line of to.height bytes.
/// @return false without memory.
template <typename Work>
[[nodiscard]] bool ForEachColumnLine(const WriteView &to, const ReadView &from, Work work) {
    constexpr ptrdiff_t kStripBytes = 96; // few enough for the strip's lines to stay in the cache
    const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(from.width) * (from.bits / 8);
    BlockArray<uint8_t> fromLines(static_cast<uint64_t>(from.height) * kStripBytes);
    BlockArray<uint8_t> toLines(static_cast<uint64_t>(to.height) * kStripBytes);
    if (!fromLines || !toLines) return false;
    for (ptrdiff_t first = 0; first < rowBytes; first += kStripBytes) {
        const ptrdiff_t bytes = std::min(kStripBytes, rowBytes - first);
        TransposeBytes(fromLines.data, from.height, from.Row(0) + first, -from.stride, from.height, bytes);
        for (ptrdiff_t i = 0; i < bytes; i++)
            work(first + i, toLines.data + i * to.height, fromLines.data + i * from.height);
        TransposeBytes(to.Row(0) + first, -to.stride, toLines.data, to.height, bytes, to.height);
    }
    return true;
}

} // namespace lmf
