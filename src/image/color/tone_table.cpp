#include "image/color/tone_table.h"

#include <algorithm>

namespace lmf {

ToneTable BuildContrastTable(int32_t contrast, int32_t brightness) {
    const double step = 256 / std::max(1.0, 256.0 - 2.0 * (contrast - kToneMiddle));
    double value = brightness - contrast;
    ToneTable table;
    for (uint8_t &entry : table.at) {
        entry = static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
        value += step;
    }
    return table;
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
