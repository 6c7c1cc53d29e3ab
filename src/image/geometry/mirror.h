// Warps about a centre depend on squares of distances, which repeat exactly on the other side of the centre. Computing
// each once leaves a quarter of the square roots, sines and powers.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace lmf {

/// Positions 0 to count - 1 of an axis and their mirror images about a centre.
struct MirrorAxis {
    int32_t count;
    int64_t sum = INT64_MAX; ///< of a position and its image; far beyond all positions when none has an exact image

    MirrorAxis(int32_t positions, double centre) : count(positions) {
        const double twice = centre * 2;
        if (std::fabs(twice) < 0x1p40 && twice == std::floor(twice)) sum = static_cast<int64_t>(twice);
    }

    /// The image of position i, or -1 if it is not a position.
    int32_t ImageOf(int32_t i) const {
        const int64_t image = sum - i;
        return image >= 0 && image < count ? static_cast<int32_t>(image) : -1;
    }
};

/// Visits all rows: prepare(y) computes what a row and its image share, then render(row) runs for each of them.
template <typename Prepare, typename Render>
void ForEachMirroredRow(const MirrorAxis &rows, Prepare prepare, Render render) {
    for (int32_t y = 0; y < rows.count; y++) {
        const int32_t image = rows.ImageOf(y);
        if (image >= 0 && image < y) continue;
        prepare(y);
        render(y);
        if (image > y) render(image);
    }
}

/// Fills left <= x < right of tables whose values are the same at a position and at its image: compute(begin, end)
/// fills a range, the images of what it filled are copied. The image of a position below `left` must not be inside.
template <typename Compute>
void FillMirrored(const MirrorAxis &columns, int32_t left, int32_t right, std::initializer_list<double *> tables,
                  Compute compute) {
    const int64_t lastOfNearSide = columns.sum >> 1, lastImage = columns.sum - left;
    const auto middle = static_cast<int32_t>(std::clamp<int64_t>(lastOfNearSide, left - 1, right - 1)) + 1;
    const auto far = static_cast<int32_t>(std::clamp<int64_t>(lastImage, middle - 1, right - 1)) + 1;
    compute(left, middle);
    for (double *table : tables) {
        for (int32_t x = middle; x < far; x++) table[x] = table[columns.sum - x];
    }
    compute(far, right);
}

} // namespace lmf
