/* Movable memory blocks that a host and the Lumenfold filter library share.
 *
 * Every picture crosses the library's boundary as one block: a packed device-independent bitmap (see lmf16filter.h).
 * On Windows these blocks are the system's own movable memory and this header is not needed; on other systems
 * `liblmf16block` provides them, and host and library must use the same copy of it. */
#ifndef LMF16BLOCK_H
#define LMF16BLOCK_H

#include <stddef.h>

#if defined(__GNUC__) && !defined(_WIN32)
#define LMF_API __attribute__((visibility("default")))
#else
#define LMF_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A movable block. Null stands for no block. Whoever holds a handle owns it. */
typedef void *LmfHandle;

/** Makes a block of `bytes` zero bytes; 0 bytes make an empty block that locks to null.
 *  @return the block, owned by the caller, or null when memory is short. */
LMF_API LmfHandle LmfBlockAlloc(size_t bytes);

/** Gives the block's bytes. The address stays valid until the last matching LmfBlockUnlock; locks nest.
 *  @return the first byte, or null for a null handle or an empty block. */
LMF_API void *LmfBlockLock(LmfHandle block);

/** Ends one lock.
 *  @return 1 while the block is still locked by somebody else, otherwise 0. */
LMF_API int LmfBlockUnlock(LmfHandle block);

/** Frees the block and its bytes, locked or not. A null handle is ignored. */
LMF_API void LmfBlockFree(LmfHandle block);

/** @return the block's size in bytes; 0 for a null handle. */
LMF_API size_t LmfBlockSize(LmfHandle block);

/** Changes the size of an unlocked block, keeps the bytes that fit and zeroes the new ones.
 *  @return the block (the handle does not change), or null when memory is short or the block is locked; the
 *  block then stays as it was. */
LMF_API LmfHandle LmfBlockReAlloc(LmfHandle block, size_t bytes);

#ifdef __cplusplus
}
#endif

#endif
