// Shapes with smooth edges: how much of each pixel a shape covers.
#pragma once

#include <algorithm>

#include "image/draw/shapes.h"
#include "platform/memory.h"

namespace lmf {

/// Coordinates of smooth shapes count so many to a pixel, in both directions.
inline constexpr int64_t kSubpixels = 16;

/// Rows of coverage: 0 for a pixel that the shape does not touch, 255 for one that lies wholly inside, and between them
/// the share of its 16 x 16 parts that lie inside.
class CoverageRow {
public:
    /// For rows of so many pixels.
    explicit CoverageRow(int32_t pixels);
    /// False when there was no memory.
    explicit operator bool() const { return steps && levels; }

    /// Takes row y of pixels of a shape whose coordinates count subpixels.
    template <typename Shape>
    void Draw(const Shape &shape, int64_t y);
    /// Pixels outside which the shape has no part in the row.
    int32_t Left() const { return left; }
    int32_t Right() const { return right; }
    /// Coverage of the pixels from Left() to Right(); others are not to be read. Good until the next Draw.
    const uint8_t *Levels() const { return levels.data; }

private:
    void Add(const RowSpan &span);
    void Finish();

    int32_t width, left = 0, right = 0;
    BlockArray<int16_t> steps; ///< by how much the number of parts differs from that of the pixel to the left
    BlockArray<uint8_t> levels;
};

template <typename Shape>
void CoverageRow::Draw(const Shape &shape, int64_t y) {
    left = width;
    right = 0;
    const int64_t bottom = std::min((y + 1) * kSubpixels, shape.bounds.bottom);
    for (int64_t part = std::max(y * kSubpixels, shape.bounds.top); part < bottom; part++)
        ForEachSpan(shape, part, [this](const RowSpan &span) { Add(span); });
    Finish();
}

} // namespace lmf
