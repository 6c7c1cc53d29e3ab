// Movable memory blocks: the one way in which the library holds pictures, masks and tables that grow with a picture.
#pragma once

#include <cstdint>
#include <span>

#include "lmf16block.h"

namespace lmf {

using BlockHandle = LmfHandle;

/// Makes a block of zero bytes, owned by the caller; null when memory is short.
[[nodiscard]] BlockHandle BlockAlloc(uint64_t bytes);
/// First byte of the block, stable until the last unlock; null for a null or empty block.
[[nodiscard]] void *BlockLock(BlockHandle block);
/// Undoes one BlockLock that gave an address.
void BlockUnlock(BlockHandle block);
/// Frees the block; null is ignored.
void BlockFree(BlockHandle block);
/// Size in bytes; 0 for null.
[[nodiscard]] uint64_t BlockSize(BlockHandle block);

/// Owns a block and frees it at the end of the scope, unless `Release` handed it on.
struct BlockOwner {
    BlockHandle handle = nullptr;

    BlockOwner() = default;
    explicit BlockOwner(BlockHandle owned) : handle(owned) {}
    BlockOwner(BlockOwner &&other) noexcept : handle(other.Release()) {}
    BlockOwner &operator=(BlockOwner &&other) noexcept {
        Reset(other.Release());
        return *this;
    }
    ~BlockOwner() { BlockFree(handle); }

    explicit operator bool() const { return handle != nullptr; }
    /// Gives the block to the caller.
    [[nodiscard]] BlockHandle Release() {
        BlockHandle released = handle;
        handle = nullptr;
        return released;
    }
    /// Frees the block and owns another one.
    void Reset(BlockHandle owned = nullptr) {
        if (handle != owned) BlockFree(handle);
        handle = owned;
    }
};

/// A zero-filled array of `count` plain elements in a block of its own, locked for its whole life.
/// `data` is null when the size overflows, is 0 or memory is short.
template <typename T>
struct BlockArray {
    BlockOwner owner;
    T *data = nullptr;

    explicit BlockArray(uint64_t count) {
        if (count > UINT64_MAX / sizeof(T)) return;
        owner.Reset(BlockAlloc(count * sizeof(T)));
        data = static_cast<T *>(BlockLock(owner.handle));
    }
    BlockArray(const BlockArray &) = delete;
    BlockArray &operator=(const BlockArray &) = delete;
    ~BlockArray() {
        if (data != nullptr) BlockUnlock(owner.handle);
    }

    explicit operator bool() const { return data != nullptr; }
    T &operator[](int64_t i) { return data[i]; }
    const T &operator[](int64_t i) const { return data[i]; }
};

/// A list of plain elements that grows, in a block of its own.
template <typename T>
struct BlockList {
    /// Puts an element at the end.
    /// @return false, with the list as it was, where memory is short
    [[nodiscard]] bool Add(const T &element) {
        if (count == room) {
            const uint64_t larger = room == 0 ? 16 : room * 2;
            BlockOwner grown(BlockAlloc(larger * sizeof(T)));
            T *moved = static_cast<T *>(BlockLock(grown.handle));
            if (moved == nullptr) return false;
            for (uint64_t i = 0; i < count; i++) moved[i] = elements[i];
            Clear(count);
            owner.Reset(grown.Release());
            elements = moved;
            room = larger;
        }
        elements[count++] = element;
        return true;
    }
    BlockList() = default;
    BlockList(const BlockList &) = delete;
    BlockList &operator=(const BlockList &) = delete;
    ~BlockList() { Clear(0); }

    [[nodiscard]] std::span<T> Elements() { return {elements, count}; }
    [[nodiscard]] std::span<const T> Elements() const { return {elements, count}; }
    /// Takes all elements out.
    void Clear() { Clear(0); }

private:
    void Clear(uint64_t left) {
        if (elements != nullptr) BlockUnlock(owner.handle);
        owner.Reset();
        elements = nullptr;
        room = 0;
        count = left;
    }

    BlockOwner owner;
    T *elements = nullptr;
    uint64_t count = 0, room = 0;
};

#ifdef LMF_FAULT_INJECTION
/// Test builds only. Lets `n` further allocations succeed and makes all after them fail; a negative n ends this.
void FailAllocationAfter(int64_t n);
/// Test builds only. Allocations that were made to fail since the last FailAllocationAfter.
[[nodiscard]] int64_t FailedAllocations();
/// Test builds only. Blocks that were made through this header and are not freed yet.
[[nodiscard]] int64_t LiveBlocks();
/// Test builds only. Locks that have not been undone yet.
[[nodiscard]] int64_t LiveLocks();
#endif

} // namespace lmf
