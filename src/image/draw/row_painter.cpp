#include "image/draw/row_painter.h"

#include <algorithm>
#include <cstring>

#include "image/core/dib.h"

namespace lmf {

void FillPixels(uint8_t *row, uint32_t bits, int32_t left, int32_t right, uint32_t value) {
    if (left >= right) return;
    if (bits == 8) {
        std::memset(row + left, static_cast<uint8_t>(value), static_cast<size_t>(right - left));
        return;
    }
    constexpr size_t kPixelBytes = 3, kShortRun = 8 * kPixelBytes;
    uint8_t *first = row + static_cast<size_t>(left) * kPixelBytes;
    const size_t size = static_cast<size_t>(right - left) * kPixelBytes;
    size_t done = 0;
    for (; done < std::min(size, kShortRun); done += kPixelBytes) StoreBgr(first + done, value);
    // What is filled is copied behind itself, so each round doubles it.
    for (; done < size; done *= 2) std::memcpy(first + done, first, std::min(done, size - done));
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
