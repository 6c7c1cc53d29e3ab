// Color and Intensity: adds a number of its own to red, green and blue and one more to all three, 128 standing for 0.
// Palette pictures have their colour table changed.
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(320, "Red:", &P::FilterRed, {0, 255}).Track(8),
    Slider(321, "Green:", &P::FilterGreen, {0, 255}).Track(9),
    Slider(322, "Blue:", &P::FilterBlue, {0, 255}).Track(10),
    Slider(323, "Intensity:", &P::FilterIntensity, {0, 255}),
};

static ToneTable Raised(int32_t offset) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = ClampByte(i + offset);
    return table;
}

static DibHandle ColorAndIntensityKernel(const ReadView &source, FilterContext &context) {
    if (context.mode == kModeGrey || context.mode == kModeMono) return nullptr;
    const int32_t intensity = context.FilterIntensity - 128;
    const ChannelTables tables = {Raised(context.FilterRed - 128 + intensity),
                                  Raised(context.FilterGreen - 128 + intensity),
                                  Raised(context.FilterBlue - 128 + intensity)};
    if (context.mode == kModePalette) return MapPaletteChannels(source, tables);
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapChannels(pass, tables);
    return pass.Finish();
}

extern constexpr Filter kColorAndIntensity = MakeFilter<kPage>(ColorAndIntensityKernel);

} // namespace lmf
