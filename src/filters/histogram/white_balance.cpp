// White Balance: lifts each channel by as much as the reference colour lacks to white. The reference is the brightest
// pixel by its weighted grey, or with "Use paper" the paper colour.
#include "filters/histogram/white_balance.h"

#include <algorithm>

#include "engine/filter.h"
#include "image/core/pixel_map.h"
#include "image/core/rows.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(1060, "Use paper", &P::FilterWhiteBalancePaper),
};

/// The first of the brightest pixels, rows from the top; black in an all-black picture.
/// @return false when memory is short
static bool FindBrightest(const ReadView &picture, Color *brightest) {
    const ReadView &view = picture;
    BlockArray<uint8_t> grey(static_cast<uint64_t>(view.width));
    if (!grey) return false;
    uint8_t best = 0;
    *brightest = 0;
    for (int32_t y = 0; y < view.height; y++) {
        ReadGreyRow(grey.data, picture, y);
        const uint8_t *row = std::max_element(grey.data, grey.data + view.width);
        if (*row <= best) continue;
        best = *row;
        *brightest = DibGetPixel(picture, static_cast<int32_t>(row - grey.data), y);
    }
    return true;
}

static ToneTable LiftTable(uint8_t reference) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = static_cast<uint8_t>(std::min(i + 255 - reference, 255));
    return table;
}

DibHandle WhiteBalance(const ReadView &source, std::optional<Color> white) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    Color reference = white.value_or(0);
    if (!white && !FindBrightest(pass.from, &reference)) return nullptr;
    MapChannels(pass, {LiftTable(RedOf(reference)), LiftTable(GreenOf(reference)), LiftTable(BlueOf(reference))});
    return pass.Finish();
}

static DibHandle WhiteBalanceKernel(const ReadView &source, FilterContext &context) {
    return WhiteBalance(source,
                        context.FilterWhiteBalancePaper != 0 ? std::optional(context.paperColor) : std::nullopt);
}

extern constexpr Filter kWhiteBalance = MakeFilter<kPage>(WhiteBalanceKernel);

} // namespace lmf
