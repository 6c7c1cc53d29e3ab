#include "image/color/tone_table.h"

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

DibHandle ApplyToneTableByMode(const ReadView &picture, const ToneTable &table, int32_t mode) {
    if (mode == kModePalette || mode == kModeMono) return MapPaletteChannels(picture, {table, table, table});
    PixelPass pass(picture);
    if (!pass) return nullptr;
    if (mode == kModeTrueColor) MapChannels(pass, table);
    if (mode == kModeGrey) MapPixels(pass, [&table](Color value) -> Color { return table.at[value & 0xFF]; });
    return pass.Finish();
}

DibHandle ApplyToneTable(const ReadView &picture, const ToneTable &table) {
    if (DibClassify(picture) == kModePalette) return MapPaletteChannels(picture, {table, table, table});
    PixelPass pass(picture);
    if (!pass) return nullptr;
    MapChannels(pass, table);
    return pass.Finish();
}

} // namespace lmf
