#include "image/draw/row_painter.h"

#include <algorithm>
#include <cstring>

#include "image/core/dib.h"

namespace lmf {

void FillPixels(uint8_t *row, uint32_t bits, int32_t left, int32_t right, uint32_t value) {
    if (left >= right) return;
    const size_t pixelBytes = bits / 8;
    const uint8_t bytes[] = {static_cast<uint8_t>(bits == 8 ? value : BlueOf(value)), GreenOf(value), RedOf(value),
                             AlphaOf(value)};
    uint8_t *first = row + static_cast<size_t>(left) * pixelBytes;
    const size_t size = static_cast<size_t>(right - left) * pixelBytes;
    if (std::all_of(bytes, bytes + pixelBytes, [&](uint8_t byte) { return byte == bytes[0]; })) {
        std::memset(first, bytes[0], size);
        return;
    }
    std::memcpy(first, bytes, pixelBytes);
    // What is filled is copied behind itself, so each round doubles it.
    for (size_t done = pixelBytes; done < size; done *= 2)
        std::memcpy(first + done, first, std::min(done, size - done));
}

RowGaps::RowGaps(int32_t width) : gaps(static_cast<uint64_t>(std::max(width, 0)) / 2 + 1) {}

void RowGaps::Reset(int32_t left, int32_t right) {
    gaps[0] = {left, right};
    count = left < right ? 1 : 0;
}

int64_t RowGaps::FirstBeyond(int64_t x) const {
    const Gap *beyond =
        std::upper_bound(gaps.data, gaps.data + count, x, [](int64_t at, const Gap &gap) { return at < gap.right; });
    return beyond - gaps.data;
}

void RowGaps::Split(int64_t i, int32_t left, int32_t right) {
    std::copy_backward(gaps.data + i, gaps.data + count, gaps.data + count + 1);
    gaps[i].right = left;
    gaps[i + 1].left = right;
    count++;
}

void RowGaps::Remove(int64_t first, int64_t last) {
    if (first == last) return;
    std::copy(gaps.data + last, gaps.data + count, gaps.data + first);
    count -= last - first;
}

} // namespace lmf
