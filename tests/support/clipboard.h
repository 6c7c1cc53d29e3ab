// The clipboard of the tests.
#pragma once

#include "platform/memory.h"

namespace lmf::testing {

/// Puts a block of the caller's on the clipboard; null empties it.
void PutOnClipboard(BlockHandle picture);

} // namespace lmf::testing
