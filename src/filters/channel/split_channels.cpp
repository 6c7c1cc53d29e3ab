// Split channels: shows one plane of the picture as an 8-bit picture, in grey or, with "Tint", in the colour of its
// ink. The ink planes hold the picture's own red, green and blue, not their complements, so dark areas stay dark.
// "Black rmvl:" says how much of the grey part, in percent, goes to the black plane of the CMYK planes. "Alpha" shows
// the second picture.
#include <algorithm>

#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(910, "Mode:", &P::FilterSplitMode,
          "RGB red;RGB green;RGB blue;CMY cyan;CMY magenta;CMY yellow;CMYK cyan;CMYK magenta;CMYK yellow;CMYK black;"
          "Alpha")
        .Within(RangeSource::SecondPicture)
        .Help("Chooses the part of the colors that the new picture shows."),
    Slider(912, "Black rmvl:", &P::FilterSplitRemove, {0, 100})
        .In(Unit::Percent)
        .Help("Moves this share of the grey part of each color from the CMYK inks to the black one."),
    CheckBox(911, "Tint", &P::FilterSplitTint).Help("Shows the plane in the color of its ink instead of grey."),
};

/// Where a plane's values come from.
enum class Origin : uint8_t { Red, Green, Blue, Black, SecondPicture };

struct Plane {
    Origin origin;
    bool lessBlack; ///< with the pixel's black taken off
    bool tint[3];   ///< does the tint take red, green and blue?
};

/// By mode.
constexpr Plane kPlanes[] = {
    {Origin::Red, false, {true, false, false}},        {Origin::Green, false, {false, true, false}},
    {Origin::Blue, false, {false, false, true}},       {Origin::Red, false, {false, true, true}},
    {Origin::Green, false, {true, false, true}},       {Origin::Blue, false, {true, true, false}},
    {Origin::Red, true, {false, true, true}},          {Origin::Green, true, {true, false, true}},
    {Origin::Blue, true, {true, true, false}},         {Origin::Black, false, {true, true, true}},
    {Origin::SecondPicture, false, {true, true, true}}};

Palette768 PaletteOf(const Plane &plane, bool tinted) {
    Palette768 palette = GreyRamp();
    for (int32_t i = 0; tinted && i < 768; i++)
        if (!plane.tint[i % 3]) palette.rgb[i] = 0;
    return palette;
}

/// The plane's value of one pixel, for all origins but the second picture.
uint8_t ValueOf(const Plane &plane, const uint8_t *bgr, int32_t removePercent) {
    const int32_t black = std::min({bgr[0], bgr[1], bgr[2]}) * removePercent / 100;
    if (plane.origin == Origin::Black) return static_cast<uint8_t>(black);
    return static_cast<uint8_t>(bgr[2 - static_cast<int32_t>(plane.origin)] - (plane.lessBlack ? black : 0));
}

DibHandle SplitChannelsKernel(const ReadView &source, FilterContext &context) {
    const Plane &plane = kPlanes[context.FilterSplitMode];
    const Palette768 palette = PaletteOf(plane, context.FilterSplitTint != 0);
    PixelPass pass(source, 8, &palette);
    const DibReadLock second(context.second);
    BlockArray<uint8_t> bgr(static_cast<uint64_t>(source.width) * 3);
    if (!pass || !bgr || (context.second != nullptr && !second)) return nullptr;
    if (plane.origin == Origin::SecondPicture && !second) return pass.Finish();
    for (int32_t y = 0; y < source.height; y++) {
        uint8_t *to = pass.to.Row(y);
        if (plane.origin != Origin::SecondPicture) ReadBgrRow(bgr.data, source, y);
        for (int32_t x = 0; x < source.width; x++) {
            to[x] = plane.origin == Origin::SecondPicture ? static_cast<uint8_t>(DibGetPixel(second.view, x, y))
                                                          : ValueOf(plane, bgr.data + x * 3, context.FilterSplitRemove);
        }
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kSplitChannels = MakeFilter<kPage>(SplitChannelsKernel);

} // namespace lmf
