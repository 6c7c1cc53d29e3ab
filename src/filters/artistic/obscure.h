// The arithmetic of Obscure for filters that hide a part of a picture behind it.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// New picture of square cells of `level` pixels, 2 to 128, in the averages of what they cover, with a grid of lines in
/// the paper colour between them: `ruleSize` pixels wide, at least 0, but at most half a cell. Null on failure.
[[nodiscard]] DibHandle Obscure(const ReadView &source, int32_t level, int32_t ruleSize, Color paper);

} // namespace lmf
