// The frame of filters whose bytes depend on the 3 by 3 pixels around them and that repeat a pixel's own row or column
// where the picture ends.
#pragma once

#include "image/core/byte_pass.h"

namespace lmf {

/// Some bytes of a row with their neighbours: those of byte i lie at i, i - left and i + right of three rows.
struct Window3x3 {
    const uint8_t *above, *here, *below;
    ptrdiff_t left, right; ///< bytes of a pixel, or 0 where there is no neighbour
};

/// Calls work(to, window, count) for the bytes of each row's first pixel, of its last one and of all between.
template <typename Work>
void ForEachWindow3x3(const BytePass &pass, Work work) {
    const ReadView &from = pass.From();
    const ptrdiff_t channels = pass.Channels(), last = (from.width - 1) * channels;
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *to = pass.To().Row(y);
        const uint8_t *above = from.Row(std::max(y - 1, 0)), *here = from.Row(y);
        const uint8_t *below = from.Row(std::min(y + 1, from.height - 1));
        const auto part = [&](ptrdiff_t begin, ptrdiff_t count, ptrdiff_t left, ptrdiff_t right) {
            work(to + begin, Window3x3{above + begin, here + begin, below + begin, left, right}, count);
        };
        part(0, channels, 0, last > 0 ? channels : 0);
        if (last > channels) part(channels, last - channels, channels, channels);
        if (last > 0) part(last, channels, channels, 0);
    }
}

} // namespace lmf
