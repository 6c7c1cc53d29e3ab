// The unfiltered scaler, for every depth.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// The picture at percentages of both sides, each pixel a sample of the source. 32-bit pictures are taken as if their
/// rows had three bytes a pixel, so that the last quarter of a row stays 0. New, owned by the caller; null when a
/// side would come to nothing.
[[nodiscard]] DibHandle DibScaleNearest(const ReadView &source, int32_t percentX, int32_t percentY);

} // namespace lmf
