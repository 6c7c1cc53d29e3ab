// The paper colour as a pixel value.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// What DibSetPixel takes for a colour in a locked picture of this ImageMode: in true colour the colour itself, in grey
/// and mono its WeightedGrey (but in grey a neutral colour keeps its level), with a palette the nearest entry.
[[nodiscard]] uint32_t PaperFillValue(Color color, int32_t mode, const ReadView &image);

} // namespace lmf
