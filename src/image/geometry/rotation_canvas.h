// What both ways to a free rotation share: where the pixels of the result come from, and how its rows are completed.
#pragma once

#include "image/geometry/free_rotation.h"

namespace lmf {

// Positions in the source have 30 fractional bits: steps of them are exact, so that a row's pixels fall into ranges.
inline constexpr int kFractionBits = 30;
inline constexpr int64_t kOne = int64_t{1} << kFractionBits;
inline constexpr int64_t kHalf = kOne / 2;

/// Positions first <= i < last.
struct Range {
    int32_t first, last;
};

/// What two ranges have in common; an empty range where they do not meet.
[[nodiscard]] Range Common(Range a, Range b);

/// Where the centre of a row's first pixel comes from.
struct SourceRow {
    int64_t x, y;
};

/// The parts of a row of the result: what the source covers at all, and what of it lies inside with all its area.
struct RowParts {
    Range covered, whole;
};

/// The way back from the result to the source, in units of 2^-30 pixels; pixel i covers i .. i + 1.
struct SourceMap {
    const RotationPlan &plan;
    int32_t width, height; ///< of the source
    int64_t stepX, stepY;  ///< from a pixel to its right neighbour

    SourceMap(const RotationPlan &rotation, const ReadView &from);

    /// Where row y of the result comes from.
    SourceRow Row(int32_t y) const;
    /// The part of a row whose centres lie in the source, less `inset` at each edge.
    Range PartInside(const SourceRow &row, int64_t inset) const;
    /// Both parts of row y; `whole` lies inside `covered`.
    RowParts PartsOf(int32_t y) const;
};

/// Result and coverage in the making.
struct RotationCanvas {
    LockedDib picture, mask;
    WriteView to, coverage;
    uint8_t fill[4] = {};        ///< a pixel of the fill value as it lies in memory, from 8 bits up
    BlockArray<uint8_t> fillRow; ///< a row of it, at any depth

    /// False afterwards without memory.
    RotationCanvas(const ReadView &from, const RotationPlan &plan);

    explicit operator bool() const { return picture && mask && fillRow; }
    /// Ends the locks and gives both pictures to the caller.
    RotatedPicture Finish();
};

/// Completes a row whose covered part holds the source's colours: fill around it, anti-aliased edges, the coverage.
/// Pictures of whole bytes a pixel only.
void FinishRow(const RotationCanvas &canvas, const SourceMap &map, int32_t y, const RowParts &parts);

} // namespace lmf
