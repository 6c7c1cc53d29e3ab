// Color and Intensity: adds a number of its own to red, green and blue and one more to all three, 128 standing for 0.
// Palette pictures have their colour table changed.
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(320, "Red:", &P::FilterRed, {0, 255}).Track(8).Help("Adds red above 128 and takes red away below it."),
    Slider(321, "Green:", &P::FilterGreen, {0, 255})
        .Track(9)
        .Help("Adds green above 128 and takes green away below it."),
    Slider(322, "Blue:", &P::FilterBlue, {0, 255}).Track(10).Help("Adds blue above 128 and takes blue away below it."),
    Slider(323, "Intensity:", &P::FilterIntensity, {0, 255})
        .Help("Lightens the whole picture above 128 and darkens it below."),
};

/// The setting that adds nothing.
constexpr int32_t kNoChange = 128;

ToneTable Raised(int32_t offset) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = ClampByte(i + offset);
    return table;
}

DibHandle ColorAndIntensityKernel(const ReadView &source, FilterContext &context) {
    if (context.mode == kModeGrey || context.mode == kModeMono) return nullptr;
    const int32_t intensity = context.FilterIntensity - kNoChange;
    const ChannelTables tables = {Raised(context.FilterRed - kNoChange + intensity),
                                  Raised(context.FilterGreen - kNoChange + intensity),
                                  Raised(context.FilterBlue - kNoChange + intensity)};
    if (context.mode == kModePalette) return MapPaletteChannels(source, tables);
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapChannels(pass, tables);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kColorAndIntensity = MakeFilter<kPage>(ColorAndIntensityKernel);

} // namespace lmf
