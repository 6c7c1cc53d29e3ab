// The arithmetic of Normalize, which other filters and the adjustment chain call whole.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// New picture whose tones between the darkest and the brightest percent are stretched to the whole scale; null on
/// failure.
[[nodiscard]] DibHandle Normalize(const ReadView &source);

} // namespace lmf
