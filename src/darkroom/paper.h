// The paper under pictures with alpha in the Darkroom.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// The paper colour of DibFlattenOnPaper, white at first.
extern Color DarkroomPaperColor;

/// 24-bit: a 32-bit picture laid over the Darkroom's paper colour; null for other depths and on failure.
[[nodiscard]] DibHandle DibFlattenOnPaper(const ReadView &source);

} // namespace lmf
