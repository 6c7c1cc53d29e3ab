// Obscure: mosaic. Square cells from the top left corner take the average of the pixels that they cover.
// Level is the side of a cell in pixels. Rule size is the width of the grid that is drawn between the cells in the
// paper colour, at most half a cell; 0 draws none.
#include "filters/artistic/obscure.h"

#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/draw/row_painter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(630, "Level:", &P::FilterObscureLevel, {2, 128})
        .In(Unit::Pixels)
        .Help("Makes each cell of the mosaic this wide and high."),
    Slider(631, "Rule size:", &P::FilterObscureRule, {0, 64})
        .In(Unit::Pixels)
        .Help("Draws lines of this width between the cells in the paper color; 0 draws none."),
};

/// Adds a row to sums of at most 128 rows.
LMF_MULTIVERSION
void AddRow(uint16_t *__restrict sums, const uint8_t *__restrict row, size_t bytes) {
    for (size_t i = 0; i < bytes; i++) sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
}

/// Divides sums of up to 128 x 128 bytes by their number: a product with 2^40 / count, rounded up, is exact, since
/// 255 * count^2 stays below 2^40.
struct Mean {
    uint64_t reciprocal;

    explicit Mean(int32_t count) : reciprocal((uint64_t{1} << 40) / static_cast<uint64_t>(count) + 1) {}
    uint8_t Of(uint32_t sum) const { return static_cast<uint8_t>(sum * reciprocal >> 40); }
};

/// Writes the means of a row of cells, `rows` rows high, from the sums of its columns.
template <int32_t kChannels>
void WriteMeans(uint8_t *to, const uint16_t *sums, int32_t width, int32_t level, int32_t rows) {
    const auto writeCell = [&](int32_t columns, Mean mean) {
        uint32_t totals[kChannels] = {};
        for (int32_t i = 0; i < columns; i++)
            for (uint32_t &total : totals) total += *sums++;
        for (uint32_t &total : totals) total = mean.Of(total);
        for (int32_t i = 0; i < columns; i++)
            for (uint32_t total : totals) *to++ = static_cast<uint8_t>(total);
    };
    const Mean whole(level * rows);
    for (int32_t x = 0; x + level <= width; x += level) writeCell(level, whole);
    if (const int32_t rest = width % level; rest > 0) writeCell(rest, Mean(rest * rows));
}

} // namespace

DibHandle Obscure(const ReadView &source, int32_t level, int32_t ruleSize, Color paper) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    const WriteView &to = pass.To();
    const int32_t width = from.width, channels = pass.Channels();
    const int32_t rule = std::min(ruleSize, level / 2);
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(channels);
    BlockArray<uint16_t> sums(bytes);
    BlockArray<uint8_t> cells(bytes), line(bytes);
    if (!sums || !cells || !line) return nullptr;
    FillPixels(line.data, to.bits, 0, width, paper);

    for (int32_t top = 0; top < from.height; top += level) {
        const int32_t rows = std::min(level, from.height - top);
        std::memset(sums.data, 0, bytes * sizeof(uint16_t));
        for (int32_t y = top; y < top + rows; y++) AddRow(sums.data, from.Row(y), bytes);
        (channels == 3 ? WriteMeans<3> : WriteMeans<1>)(cells.data, sums.data, width, level, rows);
        // Lines lie over the borders of the cells, the picture's own among them.
        for (int32_t x = -(rule / 2); x < width; x += level)
            FillPixels(cells.data, to.bits, std::max(x, 0), std::min(x + rule, width), paper);
        for (int32_t y = top; y < top + rows; y++)
            std::memcpy(to.Row(y), (y + rule / 2) % level < rule ? line.data : cells.data, bytes);
    }
    return pass.Finish();
}

namespace {

DibHandle ObscureKernel(const ReadView &source, FilterContext &context) {
    return Obscure(source, context.FilterObscureLevel, context.FilterObscureRule, context.paperColor);
}

} // namespace

extern constexpr Filter kObscure = MakeFilter<kPage>(ObscureKernel);

} // namespace lmf
