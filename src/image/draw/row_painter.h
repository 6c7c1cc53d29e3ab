// Painting by rows: runs of one colour, and many shapes one over the other with each pixel written once.
//
// Where hundreds of shapes cover each other, the last one that holds a pixel gives its colour. Asking them from the
// last to the first, each for what the later ones left over, gives the same without painting what will be hidden:
//
//     RowGaps gaps(width);
//     for each row y {
//         gaps.Reset(0, width);
//         PaintLastFirst(gaps, y, shapes, count, [&](int32_t left, int32_t right, int64_t i) { ... colour of i ... });
//         gaps.Take({0, width}, [&](int32_t left, int32_t right) { ... background ... });
//     }
#pragma once

#include "image/draw/shapes.h"
#include "platform/memory.h"

namespace lmf {

/// Sets the pixels left <= x < right of a row of 8 or 24 bits a pixel to a value as DibSetPixel takes it.
void FillPixels(uint8_t *row, uint32_t bits, int32_t left, int32_t right, uint32_t value);

/// The pixels of a row that nothing has taken yet, as gaps between those that are taken.
class RowGaps {
public:
    /// For rows of up to `width` pixels.
    explicit RowGaps(int32_t width);
    /// False when there was no memory.
    explicit operator bool() const { return static_cast<bool>(gaps); }

    /// Makes left <= x < right free and all else taken. Both lie in 0 .. width.
    void Reset(int32_t left, int32_t right);
    /// Is nothing left?
    bool IsEmpty() const { return count == 0; }
    /// Takes what is still free of a span, and calls emit(int32_t left, int32_t right) for each run of it from left to
    /// right.
    template <typename Emit>
    void Take(const RowSpan &span, Emit emit);

private:
    struct Gap {
        int32_t left, right;
    };

    /// The first gap that ends to the right of x.
    int64_t FirstBeyond(int64_t x) const;
    /// Cuts the span out of the middle of gap i.
    void Split(int64_t i, int32_t left, int32_t right);
    /// Removes the gaps first <= i < last.
    void Remove(int64_t first, int64_t last);

    BlockArray<Gap> gaps; ///< in order, with taken pixels between them
    int64_t count = 0;
};

template <typename Emit>
void RowGaps::Take(const RowSpan &span, Emit emit) {
    if (span.IsEmpty()) return;
    int64_t first = FirstBeyond(span.left);
    if (first == count || gaps[first].left >= span.right) return;
    if (gaps[first].left < span.left) {
        const auto left = static_cast<int32_t>(span.left);
        if (gaps[first].right > span.right) {
            const auto right = static_cast<int32_t>(span.right);
            Split(first, left, right);
            return emit(left, right);
        }
        emit(left, gaps[first].right);
        gaps[first].right = left;
        first++;
    }
    int64_t last = first;
    for (; last < count && gaps[last].right <= span.right; last++) emit(gaps[last].left, gaps[last].right);
    if (last < count && gaps[last].left < span.right) {
        const auto right = static_cast<int32_t>(span.right);
        emit(gaps[last].left, right);
        gaps[last].left = right;
    }
    Remove(first, last);
}

/// Calls paint(int32_t left, int32_t right, int64_t i) for each free run of row y whose last shape is shapes[i], and
/// takes it. Stops as soon as the row is full.
template <typename Shape, typename Paint>
void PaintLastFirst(RowGaps &gaps, int64_t y, const Shape *shapes, int64_t count, Paint paint) {
    for (int64_t i = count - 1; i >= 0 && !gaps.IsEmpty(); i--) {
        if (!shapes[i].bounds.HasRow(y)) continue;
        ForEachSpan(shapes[i], y, [&](const RowSpan &span) {
            gaps.Take(span, [&](int32_t left, int32_t right) { paint(left, right, i); });
        });
    }
}

} // namespace lmf
