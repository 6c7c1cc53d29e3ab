#include "image/color/paper.h"

#include "image/color/palette.h"

namespace lmf {

uint32_t PaperFillValue(Color color, int32_t mode, const ReadView &image) {
    const uint32_t red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    switch (mode) {
    case kModeGrey:
        return red == green && green == blue ? red : static_cast<uint32_t>(WeightedGrey(color));
    case kModePalette: {
        Palette768 palette;
        const uint32_t entries = DibReadPalette(image, &palette);
        if (entries == 0) return color;
        return static_cast<uint32_t>(PaletteNearest(static_cast<int32_t>(red), static_cast<int32_t>(green),
                                                    static_cast<int32_t>(blue), palette,
                                                    static_cast<int32_t>(entries)));
    }
    case kModeMono:
        return static_cast<uint32_t>(WeightedGrey(color));
    default:
        return color;
    }
}

} // namespace lmf
