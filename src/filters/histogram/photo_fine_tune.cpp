// Photo Fine-tune: up to ten corrections in a fixed order, each with its own switch. Normalize and White balance run
// those filters; "Color temp:" warms (low values) or cools, "Tint:" moves green, both with the lightness kept;
// saturation, contrast and brightness follow; Highlight, Shadows and Mid-tones lift or lower one range of tones. A step
// that is off, or on at its neutral value, costs nothing.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/filter.h"
#include "filters/histogram/normalize.h"
#include "filters/histogram/white_balance.h"
#include "image/color/hsv.h"
#include "image/color/lightness.h"
#include "image/color/tone_table.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr int32_t kNeutralKelvin = 5000;
/// Of the settings that run from 0 to 200.
constexpr int32_t kNeutral = 100;
/// What contrast and brightness are skipped at, one above the setting that changes nothing.
constexpr int32_t kNeutralTone = 128;

// The bars after the first open at 1000, above their own end: their edits are the way to set the values.
constexpr PageControl kPage[] = {
    Slider(1090, "Color temp:", &P::FilterPhotoAdjTemp, {1000, 9000})
        .Track(11)
        .In(Unit::Kelvin)
        .Help("Warms the colors below 5000 and cools them above."),
    CheckBox(1091, "Enable", &P::FilterPhotoAdjEnableTemp)
        .Named("Enable color temp")
        .Help("Lets \"Color temp:\" work."),
    OffsetSlider(1092, "Tint:", &P::FilterPhotoAdjTint, {1000, 200}, kNeutral)
        .Edit(0, 200)
        .Track(12)
        .In(Unit::Levels)
        .Help("Moves the colors towards green above 0 and towards magenta below."),
    CheckBox(1093, "Enable", &P::FilterPhotoAdjEnableTint).Named("Enable tint").Help("Lets \"Tint:\" work."),
    OffsetSlider(1094, "Saturation:", &P::FilterPhotoAdjSat, {1000, 200}, kNeutral)
        .Edit(0, 200)
        .In(Unit::Percent)
        .Help("Makes the colors stronger, or weaker as far as grey."),
    CheckBox(1095, "Enable", &P::FilterPhotoAdjEnableSat).Named("Enable saturation").Help("Lets \"Saturation:\" work."),
    Slider(1096, "Contrast:", &P::FilterPhotoAdjCont, {1000, 255})
        .Edit(0, 255)
        .Help("Spreads light and dark tones apart above 128 and brings them together below."),
    CheckBox(1097, "Enable", &P::FilterPhotoAdjEnableCont).Named("Enable contrast").Help("Lets \"Contrast:\" work."),
    Slider(1098, "Brightness:", &P::FilterPhotoAdjBright, {1000, 255})
        .Edit(0, 255)
        .Help("Lightens the whole picture above 128 and darkens it below."),
    CheckBox(1099, "Enable", &P::FilterPhotoAdjEnableBright)
        .Named("Enable brightness")
        .Help("Lets \"Brightness:\" work."),
    OffsetSlider(1100, "Highlight:", &P::FilterPhotoAdjHighlight, {1000, 200}, kNeutral)
        .Edit(0, 200)
        .Track(13)
        .In(Unit::Percent)
        .Help("Lightens or darkens the light tones of the picture."),
    CheckBox(1101, "Enable", &P::FilterPhotoAdjEnableHighlight)
        .Named("Enable highlight")
        .Help("Lets \"Highlight:\" work."),
    OffsetSlider(1102, "Shadows:", &P::FilterPhotoAdjShadow, {1000, 200}, kNeutral)
        .Edit(0, 200)
        .Track(15)
        .In(Unit::Percent)
        .Help("Lightens or darkens the dark tones of the picture."),
    CheckBox(1103, "Enable", &P::FilterPhotoAdjEnableShadow).Named("Enable shadows").Help("Lets \"Shadows:\" work."),
    OffsetSlider(1104, "Mid-tones:", &P::FilterPhotoAdjMidtone, {1000, 200}, kNeutral)
        .Edit(0, 200)
        .Track(14)
        .In(Unit::Percent)
        .Help("Lightens or darkens the middle tones of the picture."),
    CheckBox(1105, "Enable", &P::FilterPhotoAdjEnableMidtone)
        .Named("Enable mid-tones")
        .Help("Lets \"Mid-tones:\" work."),
    CheckBox(1106, "Normalize", &P::FilterPhotoAdjNormalize)
        .Help("First stretches the tones of the picture to the whole range from black to white."),
    CheckBox(1107, "White balance", &P::FilterPhotoAdjWhitebal)
        .Help("Lifts the colors so that the brightest pixel of the picture becomes white."),
};

/// Adds delta to all channels, as far as the first one that meets its limit, so that their differences stay. A delta
/// of 0 keeps the pixel's alpha too.
Color ShiftRgbLimited(Color pixel, int32_t delta) {
    if (delta == 0) return pixel;
    const int32_t red = RedOf(pixel), green = GreenOf(pixel), blue = BlueOf(pixel);
    if (delta < 0) delta = -std::min(-delta, std::min({red, green, blue}));
    if (delta > 0) delta = std::min(delta, 255 - std::max({red, green, blue}));
    return PackColor(static_cast<uint32_t>(red + delta), static_cast<uint32_t>(green + delta),
                     static_cast<uint32_t>(blue + delta));
}

/// New picture with `change` applied to each pixel.
template <typename Change>
DibHandle ChangePixels(const ReadView &picture, Change change) {
    PixelPass pass(picture);
    if (!pass) return nullptr;
    MapPixels(pass, change);
    return pass.Finish();
}

DibHandle TemperatureStep(const ReadView &picture, const FilterContext &context) {
    const auto warmth = static_cast<int32_t>((kNeutralKelvin - context.FilterPhotoAdjTemp) / 4000.0 * 100.0);
    return ChangePixels(picture, [=](Color pixel) { return ShiftKeepingLightness(pixel, warmth, 0, -warmth); });
}

DibHandle TintStep(const ReadView &picture, const FilterContext &context) {
    const int32_t green = context.FilterPhotoAdjTint - kNeutral;
    return ChangePixels(picture, [=](Color pixel) { return ShiftKeepingLightness(pixel, 0, green, 0); });
}

DibHandle SaturationStep(const ReadView &picture, const FilterContext &context) {
    const float scale = 2.0f * (static_cast<float>(context.FilterPhotoAdjSat) / 200.0f);
    return ChangePixels(picture, [=](Color pixel) {
        Hsv hsv = RgbToHsv(pixel);
        hsv.saturation *= scale;
        return HsvToRgb(hsv);
    });
}

DibHandle ContrastStep(const ReadView &picture, const FilterContext &context) {
    return ApplyToneTableByMode(picture, BuildContrastTable(context.FilterPhotoAdjCont, kToneMiddle), context.mode);
}

DibHandle BrightnessStep(const ReadView &picture, const FilterContext &context) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) table.at[i] = ClampByte(context.FilterPhotoAdjBright - kToneMiddle + i);
    return ApplyToneTableByMode(picture, table, context.mode);
}

/// Moves a band of 128 tones by up to 128 levels. The weight follows a wave over the band: at tone `first` + k it is
/// sin(k / 128 * `degrees` + `start`), from -1 (no change) to 1.
DibHandle TonalBandShift(const ReadView &picture, int32_t value, int32_t first, double degrees, double start) {
    const float factor = (static_cast<float>(value) - 100.0f) / 100.0f;
    int32_t shifts[256] = {};
    for (int32_t k = 0; k < 128; k++) {
        const double angle = (k * 0.0078125 * degrees + start) * std::numbers::pi / 180.0;
        const auto weight = static_cast<float>(std::sin(angle));
        const auto amount = static_cast<float>((weight + 1.0) * 0.5 * factor);
        shifts[first + k] = static_cast<int32_t>(amount * 128.0);
    }
    return ChangePixels(picture, [&](Color pixel) { return ShiftRgbLimited(pixel, shifts[WeightedGrey(pixel)]); });
}

DibHandle HighlightStep(const ReadView &picture, const FilterContext &context) {
    return TonalBandShift(picture, context.FilterPhotoAdjHighlight, 128, 180, 270);
}

DibHandle ShadowStep(const ReadView &picture, const FilterContext &context) {
    return TonalBandShift(picture, context.FilterPhotoAdjShadow, 0, 180, 90);
}

DibHandle MidtoneStep(const ReadView &picture, const FilterContext &context) {
    return TonalBandShift(picture, context.FilterPhotoAdjMidtone, 64, 360, 270);
}

struct Step {
    DibHandle (*run)(const ReadView &picture, const FilterContext &context);
    NumberField enable;
    NumberField value; ///< null for a step without one
    int32_t neutral;
};

constexpr Step kSteps[] = {
    {[](const ReadView &picture, const FilterContext &) { return Normalize(picture); }, &P::FilterPhotoAdjNormalize,
     nullptr, 0},
    {[](const ReadView &picture, const FilterContext &) { return WhiteBalance(picture, std::nullopt); },
     &P::FilterPhotoAdjWhitebal, nullptr, 0},
    {TemperatureStep, &P::FilterPhotoAdjEnableTemp, &P::FilterPhotoAdjTemp, kNeutralKelvin},
    {TintStep, &P::FilterPhotoAdjEnableTint, &P::FilterPhotoAdjTint, kNeutral},
    {SaturationStep, &P::FilterPhotoAdjEnableSat, &P::FilterPhotoAdjSat, kNeutral},
    {ContrastStep, &P::FilterPhotoAdjEnableCont, &P::FilterPhotoAdjCont, kNeutralTone},
    {BrightnessStep, &P::FilterPhotoAdjEnableBright, &P::FilterPhotoAdjBright, kNeutralTone},
    {HighlightStep, &P::FilterPhotoAdjEnableHighlight, &P::FilterPhotoAdjHighlight, kNeutral},
    {ShadowStep, &P::FilterPhotoAdjEnableShadow, &P::FilterPhotoAdjShadow, kNeutral},
    {MidtoneStep, &P::FilterPhotoAdjEnableMidtone, &P::FilterPhotoAdjMidtone, kNeutral},
};

DibHandle PhotoFineTuneKernel(const ReadView &source, FilterContext &context) {
    LockedDib picture;
    for (const Step &step : kSteps) {
        const bool neutral = step.value != nullptr && context.*step.value == step.neutral;
        if (context.*step.enable == 0 || neutral) continue;
        picture = LockedDib(step.run(picture ? picture : source, context));
        if (!picture) return nullptr;
    }
    return picture ? picture.Release() : DibClone(source);
}

} // namespace

extern constexpr Filter kPhotoFineTune = MakeFilter<kPage>(PhotoFineTuneKernel);

} // namespace lmf
