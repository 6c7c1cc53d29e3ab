#include "image/draw/coverage.h"

#include <cstring>

namespace lmf {

namespace {

constexpr int32_t kStretch = 16; ///< pixels

/// Are the next kStretch steps 0?
bool IsFlat(const int16_t *steps) {
    uint64_t words[kStretch * sizeof(int16_t) / sizeof(uint64_t)];
    std::memcpy(words, steps, sizeof words);
    return (words[0] | words[1] | words[2] | words[3]) == 0;
}

} // namespace

CoverageRow::CoverageRow(int32_t pixels)
    : width(pixels), steps(static_cast<uint64_t>(pixels) + 2), levels(static_cast<uint64_t>(pixels)) {}

// Each end of a span changes two steps: its own pixel has a part of it, and the next one the rest.
void CoverageRow::Add(const RowSpan &span) {
    const int64_t end = width * kSubpixels;
    const int64_t first = std::clamp<int64_t>(span.left, 0, end), last = std::clamp<int64_t>(span.right, 0, end);
    if (first >= last) return;
    const auto add = [&](int64_t at, int32_t sign) {
        const auto part = static_cast<int32_t>(at % kSubpixels);
        int16_t *step = &steps[at / kSubpixels];
        step[0] = static_cast<int16_t>(step[0] + sign * (static_cast<int32_t>(kSubpixels) - part));
        step[1] = static_cast<int16_t>(step[1] + sign * part);
    };
    add(first, 1);
    add(last, -1);
    left = std::min(left, static_cast<int32_t>(first / kSubpixels));
    right = std::max(right, static_cast<int32_t>((last + kSubpixels - 1) / kSubpixels));
}

void CoverageRow::Finish() {
    if (left >= right) {
        left = right = 0;
        return;
    }
    constexpr int32_t kParts = kSubpixels * kSubpixels;
    int32_t parts = 0;
    uint8_t level = 0;
    for (int32_t x = left; x < right;) {
        // Between the ends of spans nothing changes.
        if (right - x >= kStretch && IsFlat(steps.data + x)) {
            std::memset(levels.data + x, level, kStretch);
            x += kStretch;
            continue;
        }
        parts += steps[x];
        level = static_cast<uint8_t>((parts * 255 + kParts / 2) / kParts);
        levels[x++] = level;
    }
    std::fill(steps.data + left, steps.data + std::min(right + 2, width + 2), int16_t{0});
}

} // namespace lmf
