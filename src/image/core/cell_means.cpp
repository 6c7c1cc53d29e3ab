#include "image/core/cell_means.h"

#include <cstring>

#include "common/multiversion.h"

namespace lmf {

namespace {

/// Adds a row to sums of at most kLargestCell rows.
LMF_MULTIVERSION
void AddRow(uint16_t *__restrict sums, const uint8_t *__restrict row, size_t bytes) {
    for (size_t i = 0; i < bytes; i++) sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
}
static_assert(kLargestCell * 255 <= UINT16_MAX);

/// Divides sums of `count` bytes by their number.
struct Mean {
    /// A product with 2^40 / count, a little more, is exact as long as 255 * count^2 stays below 2^40.
    uint64_t reciprocal;

    explicit Mean(int32_t count) : reciprocal((uint64_t{1} << 40) / static_cast<uint64_t>(count) + 1) {}
    uint8_t Of(uint32_t sum) const { return static_cast<uint8_t>(sum * reciprocal >> 40); }
};

/// Writes the means of cells that are `rows` high from the sums of their columns.
template <int32_t kChannels>
void WriteMeans(uint8_t *to, const uint16_t *sums, int32_t width, int32_t cellWidth, int32_t cut, int32_t rows) {
    const auto writeCell = [&](int32_t columns, Mean mean) {
        uint32_t totals[kChannels] = {};
        for (int32_t i = 0; i < columns; i++)
            for (uint32_t &total : totals) total += *sums++;
        for (uint32_t &total : totals) total = mean.Of(total);
        for (int32_t i = 0; i < columns; i++)
            for (uint32_t total : totals) *to++ = static_cast<uint8_t>(total);
    };
    const Mean whole(cellWidth * rows);
    int32_t x = std::min(cellWidth - cut, width);
    writeCell(x, Mean(x * rows));
    for (; x + cellWidth <= width; x += cellWidth) writeCell(cellWidth, whole);
    if (x < width) writeCell(width - x, Mean((width - x) * rows));
}

} // namespace

CellMeans::CellMeans(int32_t rowWidth, int32_t rowChannels, int32_t widthOfCells, int32_t firstCut)
    : width(rowWidth), channels(rowChannels), cellWidth(widthOfCells), cut(firstCut),
      sums(static_cast<uint64_t>(width) * static_cast<uint64_t>(channels)),
      row(static_cast<uint64_t>(width) * static_cast<uint64_t>(channels)) {}

uint8_t *CellMeans::Of(const ReadView &picture, int32_t top, int32_t bottom) {
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(channels);
    std::memset(sums.data, 0, bytes * sizeof(uint16_t));
    for (int32_t y = top; y < bottom; y++) AddRow(sums.data, picture.Row(y), bytes);
    (channels == 3 ? WriteMeans<3> : WriteMeans<1>)(row.data, sums.data, width, cellWidth, cut, bottom - top);
    return row.data;
}

} // namespace lmf
