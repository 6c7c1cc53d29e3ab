// Edge Trace and Fatten: for 1-bit pictures. The regions of 0 grow by one pixel in all eight directions; with "Fatten"
// that is the result, without it only the ring that was gained stays 0. The bits count, whatever colours they stand
// for.
#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(390, "Fatten", &P::FilterEdgeTraceFatten)
        .Help("Keeps the shapes and thickens them by a pixel all round; off, only a line around them is left."),
};

/// Which of the 8 pixels of byte i of row y are 0, as set bits; none outside the picture.
uint32_t ZerosAt(const ReadView &view, int32_t i, int32_t y) {
    const int32_t bytes = (view.width + 7) / 8;
    if (i < 0 || i >= bytes || y < 0 || y >= view.height) return 0;
    const uint32_t padding = i == bytes - 1 && view.width % 8 != 0 ? 0xFFu >> view.width % 8 : 0;
    return ~(view.Row(y)[i] | padding) & 0xFF;
}

void TraceRow(const WriteView &to, const ReadView &from, int32_t y, bool fatten) {
    const auto threeRows = [&](int32_t i) {
        return ZerosAt(from, i, y - 1) | ZerosAt(from, i, y) | ZerosAt(from, i, y + 1);
    };
    uint8_t *row = to.Row(y);
    uint32_t before = 0, here = threeRows(0);
    for (int32_t i = 0; i < (from.width + 7) / 8; i++) {
        const uint32_t after = threeRows(i + 1);
        uint32_t zeros = here | here >> 1 | here << 1 | before << 7 | after >> 7;
        if (!fatten) zeros &= ~ZerosAt(from, i, y);
        row[i] = static_cast<uint8_t>(~zeros);
        before = here;
        here = after;
    }
    if (from.width % 8 != 0) row[from.width / 8] &= static_cast<uint8_t>(~(0xFF >> from.width % 8));
}

DibHandle EdgeTraceAndFattenKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass || pass.from.bits != 1) return nullptr;
    for (int32_t y = 0; y < pass.from.height; y++) TraceRow(pass.to, pass.from, y, context.FilterEdgeTraceFatten != 0);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kEdgeTraceAndFatten = MakeFilter<kPage>(EdgeTraceAndFattenKernel);

} // namespace lmf
