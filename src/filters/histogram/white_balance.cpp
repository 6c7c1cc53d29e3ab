// White Balance: lifts each channel by as much as the reference colour lacks to white. The reference is the brightest
// pixel by its weighted grey, or with "Use paper" the paper colour.
#include "filters/histogram/white_balance.h"

#include <algorithm>

#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(1060, "Use paper", &P::FilterWhiteBalancePaper)
        .Help("Makes the paper color white; clear, the brightest pixel of the picture becomes white."),
};

/// The first of the brightest pixels, rows from the top; black in an all-black picture. None when memory is short.
std::optional<Color> BrightestPixel(const ReadView &picture) {
    BlockArray<uint8_t> grey(static_cast<uint64_t>(picture.width));
    if (!grey) return std::nullopt;
    uint8_t most = 0;
    Color brightest = 0;
    for (int32_t y = 0; y < picture.height; y++) {
        ReadGreyRow(grey.data, picture, y);
        const uint8_t *place = std::max_element(grey.data, grey.data + picture.width);
        if (*place <= most) continue;
        most = *place;
        brightest = DibGetPixel(picture, static_cast<int32_t>(place - grey.data), y);
    }
    return brightest;
}

ToneTable LiftTable(uint8_t reference) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = static_cast<uint8_t>(std::min(i + 255 - reference, 255));
    return table;
}

} // namespace

DibHandle WhiteBalance(const ReadView &source, std::optional<Color> white) {
    PixelPass pass(source);
    if (pass && !white) white = BrightestPixel(source);
    if (!pass || !white) return nullptr;
    MapChannels(pass, {LiftTable(RedOf(*white)), LiftTable(GreenOf(*white)), LiftTable(BlueOf(*white))});
    return pass.Finish();
}

namespace {

DibHandle WhiteBalanceKernel(const ReadView &source, FilterContext &context) {
    return WhiteBalance(source,
                        context.FilterWhiteBalancePaper != 0 ? std::optional(context.paperColor) : std::nullopt);
}

} // namespace

extern constexpr Filter kWhiteBalance = MakeFilter<kPage>(WhiteBalanceKernel);

} // namespace lmf
