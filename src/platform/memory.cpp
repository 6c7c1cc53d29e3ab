#include "platform/memory.h"

#include "platform/system_blocks.h"

namespace lmf {

#ifdef LMF_FAULT_INJECTION

namespace {

int64_t allocationsLeft = -1;
int64_t failedAllocations = 0;
int64_t liveBlocks = 0;
int64_t liveLocks = 0;

bool AllocationAllowed() {
    if (allocationsLeft < 0) return true;
    if (allocationsLeft == 0) {
        failedAllocations++;
        return false;
    }
    allocationsLeft--;
    return true;
}
void CountBlocks(int64_t change) {
    liveBlocks += change;
}
void CountLocks(int64_t change) {
    liveLocks += change;
}

} // namespace

void FailAllocationAfter(int64_t n) {
    allocationsLeft = n;
    failedAllocations = 0;
}
int64_t FailedAllocations() {
    return failedAllocations;
}
int64_t LiveBlocks() {
    return liveBlocks;
}
int64_t LiveLocks() {
    return liveLocks;
}

#else

namespace {

bool AllocationAllowed() {
    return true;
}
void CountBlocks(int64_t) {}
void CountLocks(int64_t) {}

} // namespace

#endif

BlockHandle BlockAlloc(uint64_t bytes) {
    if (!AllocationAllowed()) return nullptr;
    BlockHandle block = SystemBlockAlloc(bytes);
    if (block != nullptr) CountBlocks(1);
    return block;
}

void *BlockLock(BlockHandle block) {
    void *bytes = SystemBlockLock(block);
    if (bytes != nullptr) CountLocks(1);
    return bytes;
}

void BlockUnlock(BlockHandle block) {
    SystemBlockUnlock(block);
    CountLocks(-1);
}

void BlockFree(BlockHandle block) {
    if (block == nullptr) return;
    SystemBlockFree(block);
    CountBlocks(-1);
}

uint64_t BlockSize(BlockHandle block) {
    return SystemBlockSize(block);
}

} // namespace lmf
