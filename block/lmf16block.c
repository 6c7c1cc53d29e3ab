/* Movable blocks for systems without a GlobalAlloc of their own. See lmf16block.h for the contract. */
#define _GNU_SOURCE
#include "lmf16block.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

typedef struct Block {
    unsigned char *bytes;
    size_t size;
    size_t mapped; /* bytes mapped, or 0 when `bytes` came from the heap */
    int locks;
} Block;

#define HUGE_PAGE ((size_t)2 << 20)

#ifndef LMF_BLOCKS_ON_HEAP
/* Maps fresh zero pages at a huge page boundary: a 36 MB picture then costs 18 page faults in place of 9000. */
static unsigned char *MapHuge(size_t bytes, size_t *mapped) {
    size_t length = (bytes + HUGE_PAGE - 1) & ~(HUGE_PAGE - 1);
    size_t reserve = length + HUGE_PAGE;
    if (length < bytes || reserve < length) return NULL;
    unsigned char *start = mmap(NULL, reserve, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) return NULL;
    size_t head = (size_t)(-(uintptr_t)start & (HUGE_PAGE - 1));
    if (head != 0) munmap(start, head);
    if (head != HUGE_PAGE) munmap(start + head + length, HUGE_PAGE - head);
    madvise(start + head, length, MADV_HUGEPAGE);
    *mapped = length;
    return start + head;
}
#endif

static int GetBytes(Block *block, size_t bytes) {
    block->size = bytes;
    block->mapped = 0;
    block->bytes = NULL;
    if (bytes == 0) return 1;
#ifndef LMF_BLOCKS_ON_HEAP
    if (bytes >= HUGE_PAGE) {
        block->bytes = MapHuge(bytes, &block->mapped);
        return block->bytes != NULL;
    }
#endif
    block->bytes = calloc(1, bytes);
    return block->bytes != NULL;
}

static void DropBytes(Block *block) {
    if (block->mapped != 0)
        munmap(block->bytes, block->mapped);
    else
        free(block->bytes);
}

LmfHandle LmfBlockAlloc(size_t bytes) {
    Block *block = malloc(sizeof *block);
    if (block == NULL) return NULL;
    block->locks = 0;
    if (!GetBytes(block, bytes)) {
        free(block);
        return NULL;
    }
    return block;
}

void *LmfBlockLock(LmfHandle handle) {
    Block *block = handle;
    if (block == NULL || block->bytes == NULL) return NULL;
    block->locks++;
    return block->bytes;
}

int LmfBlockUnlock(LmfHandle handle) {
    Block *block = handle;
    if (block == NULL || block->locks == 0) return 0;
    block->locks--;
    return block->locks > 0;
}

void LmfBlockFree(LmfHandle handle) {
    Block *block = handle;
    if (block == NULL) return;
    DropBytes(block);
    free(block);
}

size_t LmfBlockSize(LmfHandle handle) {
    const Block *block = handle;
    return block == NULL ? 0 : block->size;
}

LmfHandle LmfBlockReAlloc(LmfHandle handle, size_t bytes) {
    Block *block = handle;
    Block fresh;
    if (block == NULL || block->locks > 0 || !GetBytes(&fresh, bytes)) return NULL;
    size_t kept = bytes < block->size ? bytes : block->size;
    if (kept > 0) memcpy(fresh.bytes, block->bytes, kept);
    DropBytes(block);
    fresh.locks = 0;
    *block = fresh;
    return block;
}
