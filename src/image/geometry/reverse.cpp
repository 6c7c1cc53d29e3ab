#include "image/geometry/reverse.h"

#include <cstring>

#include "common/multiversion.h"

namespace lmf {

namespace {

LMF_MULTIVERSION
void ReverseBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = from[count - 1 - i];
}

LMF_MULTIVERSION
void ReverseQuads(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) std::memcpy(to + i * 4, from + (count - 1 - i) * 4, 4);
}

/// Five pixels at a time in a register of 16 bytes. The spare byte lies before them when they are read and after them
/// when they are written, where the next pixel overwrites it; so at least one more pixel must follow.
LMF_MULTIVERSION
void ReverseTriples(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    using Bytes16 = uint8_t __attribute__((vector_size(16)));
    const uint8_t *end = from + count * 3;
    for (; count > 5; count -= 5, to += 15, end -= 15) {
        Bytes16 five;
        std::memcpy(&five, end - 16, sizeof five);
        five = __builtin_shufflevector(five, five, 13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
        std::memcpy(to, &five, sizeof five);
    }
    for (; count > 0; count--, to += 3, end -= 3) std::memcpy(to, end - 3, 3);
}

} // namespace

void ReversePixels(uint8_t *to, const uint8_t *from, size_t count, size_t pixelBytes) {
    switch (pixelBytes) {
    case 1:
        return ReverseBytes(to, from, count);
    case 3:
        return ReverseTriples(to, from, count);
    default:
        return ReverseQuads(to, from, count);
    }
}

} // namespace lmf
