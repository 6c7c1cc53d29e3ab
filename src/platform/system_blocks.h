// The system's own movable blocks, under platform/memory.h, which alone calls them and says what they do.
#pragma once

#include "platform/memory.h"

namespace lmf {

/// As BlockAlloc.
[[nodiscard]] BlockHandle SystemBlockAlloc(uint64_t bytes);
/// As BlockLock.
[[nodiscard]] void *SystemBlockLock(BlockHandle block);
/// As BlockUnlock.
void SystemBlockUnlock(BlockHandle block);
/// As BlockFree, never with null.
void SystemBlockFree(BlockHandle block);
/// As BlockSize.
[[nodiscard]] uint64_t SystemBlockSize(BlockHandle block);

} // namespace lmf
