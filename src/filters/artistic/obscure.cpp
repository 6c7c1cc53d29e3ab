// Obscure: mosaic. Square cells from the top left corner take the average of the pixels that they cover.
// Level is the side of a cell in pixels. Rule size is the width of the grid that is drawn between the cells in the
// paper colour, at most half a cell; 0 draws none.
#include "filters/artistic/obscure.h"

#include <cstring>

#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/cell_means.h"
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

} // namespace

DibHandle Obscure(const ReadView &source, int32_t level, int32_t ruleSize, Color paper) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    const WriteView &to = pass.To();
    const int32_t width = from.width, channels = pass.Channels();
    const int32_t rule = std::min(ruleSize, level / 2);
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(channels);
    CellMeans means(width, channels, level);
    BlockArray<uint8_t> line(bytes);
    if (!means || !line) return nullptr;
    FillPixels(line.data, to.bits, 0, width, paper);

    for (int32_t top = 0; top < from.height; top += level) {
        const int32_t bottom = std::min(top + level, from.height);
        uint8_t *cells = means.Of(from, top, bottom);
        // Lines lie over the borders of the cells, the picture's own among them.
        for (int32_t x = -(rule / 2); x < width; x += level)
            FillPixels(cells, to.bits, std::max(x, 0), std::min(x + rule, width), paper);
        for (int32_t y = top; y < bottom; y++)
            std::memcpy(to.Row(y), (y + rule / 2) % level < rule ? line.data : cells, bytes);
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
