// Split channels: shows one plane of the picture as an 8-bit picture, in grey or, with "Tint", in the colour of its
// ink. The ink planes hold the picture's own red, green and blue, not their complements, so dark areas stay dark.
// "Black rmvl:" says how much of the grey part, in percent, goes to the black plane of the CMYK planes. "Alpha" shows
// the second picture.
#include <algorithm>

#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Combo(910, "Mode:", &P::FilterSplitMode,
          "RGB red;RGB green;RGB blue;CMY cyan;CMY magenta;CMY yellow;CMYK cyan;CMYK magenta;CMYK yellow;CMYK black;"
          "Alpha"),
    Slider(912, "Black rmvl:", &P::FilterSplitRemove, {0, 100}),
    CheckBox(911, "Tint", &P::FilterSplitTint),
};

enum SplitMode : int32_t { kCmykCyan = 6, kCmykBlack = 9, kAlpha = 10 };

/// What the tint of each mode takes: full scale of red, green, blue.
static constexpr bool kTints[][3] = {{true, false, false}, {false, true, false}, {false, false, true},
                                     {false, true, true},  {true, false, true},  {true, true, false},
                                     {false, true, true},  {true, false, true},  {true, true, false},
                                     {true, true, true},   {true, true, true}};

static Palette768 PlanePalette(int32_t mode, bool tinted) {
    Palette768 palette = GreyRamp();
    for (int32_t i = 0; tinted && i < 768; i++)
        if (!kTints[mode][i % 3]) palette.rgb[i] = 0;
    return palette;
}

/// The plane's value of one pixel, for all modes but Alpha.
static int32_t PlaneValue(Color pixel, int32_t mode, int32_t removePercent) {
    const int32_t channels[] = {RedOf(pixel), GreenOf(pixel), BlueOf(pixel)};
    if (mode < kCmykCyan) return channels[mode % 3];
    const int32_t black = std::min({channels[0], channels[1], channels[2]}) * removePercent / 100;
    return mode == kCmykBlack ? black : channels[mode % 3] - black;
}

static DibHandle SplitChannelsKernel(const ReadView &source, FilterContext &context) {
    const int32_t mode = std::clamp(context.FilterSplitMode, 0, static_cast<int32_t>(kAlpha));
    const Palette768 palette = PlanePalette(mode, context.FilterSplitTint != 0);
    PixelPass pass(source, 8, &palette);
    const DibReadLock second(context.second);
    if (!pass || (context.second != nullptr && !second)) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *plane = to.Row(y);
        for (int32_t x = 0; x < from.width; x++) {
            if (mode != kAlpha)
                plane[x] = static_cast<uint8_t>(PlaneValue(DibGetPixel(from, x, y), mode, context.FilterSplitRemove));
            else if (second)
                plane[x] = static_cast<uint8_t>(DibGetPixel(second.view, x, y));
        }
    }
    return pass.Finish();
}

extern constexpr Filter kSplitChannels = MakeFilter<kPage>(SplitChannelsKernel);

} // namespace lmf
