// Systems without movable blocks of their own share those of lmf16block with their hosts.
#include "platform/system_blocks.h"

namespace lmf {

BlockHandle SystemBlockAlloc(uint64_t bytes) {
    return LmfBlockAlloc(bytes);
}

void *SystemBlockLock(BlockHandle block) {
    return LmfBlockLock(block);
}

void SystemBlockUnlock(BlockHandle block) {
    LmfBlockUnlock(block);
}

void SystemBlockFree(BlockHandle block) {
    LmfBlockFree(block);
}

uint64_t SystemBlockSize(BlockHandle block) {
    return LmfBlockSize(block);
}

} // namespace lmf
