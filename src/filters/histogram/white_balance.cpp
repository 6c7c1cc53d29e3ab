// White Balance: lifts each channel by as much as the reference colour lacks to white. The reference is the brightest
// pixel by its weighted grey, or with "Use paper" the paper colour.
#include "filters/histogram/white_balance.h"

#include <algorithm>

#include "engine/slots.h"
#include "image/pixel_map.h"
#include "image/rows.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(1060, "Use paper", &FilterParameters::FilterWhiteBalancePaper),
};

/// The first of the brightest pixels, rows from the top; black in an all-black picture.
/// @return false when memory is short
static bool FindBrightest(const DibLock &picture, Color *brightest) {
    const DibView &view = picture.view;
    BlockArray<uint8_t> grey(static_cast<uint64_t>(view.width));
    if (!grey) return false;
    uint8_t best = 0;
    *brightest = 0;
    for (int32_t y = 0; y < view.height; y++) {
        ReadGreyRow(grey.data, picture, y);
        const uint8_t *row = std::max_element(grey.data, grey.data + view.width);
        if (*row <= best) continue;
        best = *row;
        *brightest = DibGetPixel(picture.image, static_cast<int32_t>(row - grey.data), y);
    }
    return true;
}

static ToneTable LiftTable(uint8_t reference) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = static_cast<uint8_t>(std::min(i + 255 - reference, 255));
    return table;
}

DibHandle WhiteBalanceKernel(DibHandle source, FilterContext *context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    Color reference = context->paperColor;
    if (context->FilterWhiteBalancePaper == 0 && !FindBrightest(pass.from, &reference)) return nullptr;
    MapChannels(pass, {LiftTable(RedOf(reference)), LiftTable(GreenOf(reference)), LiftTable(BlueOf(reference))});
    return pass.Finish();
}

extern constexpr FilterSlots kWhiteBalance = MakeSlots<kPage>(WhiteBalanceKernel);

} // namespace lmf
