#include "filters/tone/tone_table.h"

#include <algorithm>

namespace lmf {

void BuildContrastTable(int32_t contrast, int32_t brightness, ToneTable *table) {
    const double step = 256 / std::max(1.0, 256.0 - 2.0 * contrast);
    double value = static_cast<double>(brightness) - contrast;
    for (uint8_t &entry : table->at) {
        entry = static_cast<uint8_t>(value > 255 ? 255 : value < 0 ? 0 : value);
        value += step;
    }
}

DibHandle ApplyToneTableByMode(DibHandle picture, const ToneTable &table, const FilterContext *context) {
    if (context->mode == kModePalette || context->mode == kModeMono)
        return MapPaletteChannels(picture, {table, table, table});
    PixelPass pass(picture);
    if (!pass) return nullptr;
    if (context->mode == kModeTrueColor) MapChannels(pass, table);
    if (context->mode == kModeGrey) MapPixels(pass, [&table](Color value) -> Color { return table.at[value & 0xFF]; });
    return pass.Finish();
}

DibHandle ApplyToneTable(DibHandle picture, const ToneTable &table) {
    if (DibClassify(picture) == kModePalette) return MapPaletteChannels(picture, {table, table, table});
    PixelPass pass(picture);
    if (!pass) return nullptr;
    MapChannels(pass, table);
    return pass.Finish();
}

} // namespace lmf
