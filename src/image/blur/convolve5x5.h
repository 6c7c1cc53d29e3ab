// Integer convolution with a window of up to 5 by 5 pixels.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// A window and what to do with its sums. Sums must stay inside 16 bits.
struct Window5x5 {
    int16_t weights[25]; ///< row by row, the rows as they lie in memory
    int16_t divisor;     ///< used where the weights that fall on the picture add up to 0
    int16_t bias;        ///< added after the division
};

/// How byte offsets are counted in pictures of 24 and 8 bits.
enum class ByteOffsets {
    Of16Bits, ///< signed numbers that wrap, so that from about 3640 pixels of width on some taps read another row; a
              ///< wrapped offset that leaves the pixel rows has no weight
    Whole
};

/// Each channel becomes its weighted sum, divided by the sum of the weights that fall on the picture. Alpha becomes 0.
/// @return a new picture with the depth and palette of `source`, or null.
[[nodiscard]] DibHandle Convolve5x5(const ReadView &source, const Window5x5 &window, ByteOffsets offsets);

} // namespace lmf
