// The arithmetic of Neon, which Impact calls whole.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// New picture of the edges of `source`, found on a copy of at most 500 pixels across; null on failure.
[[nodiscard]] DibHandle Neon(const ReadView &source);

} // namespace lmf
