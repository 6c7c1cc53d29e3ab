// Counts of bytes in a moving window: order statistics of windows that are too wide for a sorting network.
#pragma once

#include <cstdint>

namespace lmf {

/// How often each byte occurs in a window.
struct ByteCounts {
    uint32_t at[256] = {};

    /// Element `index` of the window's bytes in rising order; the window must hold more than that.
    uint8_t InOrder(int64_t index) const {
        int32_t byte = 0;
        for (; index >= at[byte]; byte++) index -= at[byte];
        return static_cast<uint8_t>(byte);
    }
};

} // namespace lmf
