#include "image/color/lightness.h"

namespace lmf {

namespace {

/// Hue in whole degrees, saturation and lightness from 0 to 1. The whole degrees lose a little at each pass.
struct HslColour {
    int32_t hue;
    float saturation, lightness;
};

HslColour RgbToHsl(Color pixel) {
    const auto red = static_cast<float>(RedOf(pixel) / 255.0);
    const auto green = static_cast<float>(GreenOf(pixel) / 255.0);
    const auto blue = static_cast<float>(BlueOf(pixel) / 255.0);
    const float most = std::max({red, green, blue}), least = std::min({red, green, blue});
    const float delta = most - least;
    HslColour color{0, 0.0f, (most + least) * 0.5f};
    if (delta == 0.0f) return color;
    color.saturation = color.lightness <= 0.5f ? delta / (most + least) : delta / (2.0f - most - least);
    float hue;
    if (red == most)
        hue = (green - blue) / 6.0f / delta;
    else if (green == most)
        hue = (blue - red) / 6.0f / delta + 0.33333334f;
    else
        hue = (red - green) / 6.0f / delta + 0.6666667f;
    if (hue < 0.0f) hue += 1.0f;
    if (hue > 1.0f) hue -= 1.0f;
    color.hue = static_cast<int32_t>(hue * 360.0f);
    return color;
}

/// One channel at the place x of the colour circle, between the levels `low` and `high`.
uint32_t HslChannel(float low, float high, float x) {
    if (x < 0.0f) x += 1.0f;
    if (x > 1.0f) x -= 1.0f;
    float level;
    if (6.0f * x < 1.0f)
        level = (high - low) * 6.0f * x + low;
    else if (2.0f * x < 1.0f)
        level = high;
    else if (3.0f * x >= 2.0f)
        level = low;
    else
        level = (high - low) * (0.6666667f - x) * 6.0f + low;
    return static_cast<uint32_t>(static_cast<int32_t>(level * 255.0f)) & 255;
}

Color HslToRgb(const HslColour &color) {
    const float s = color.saturation, l = color.lightness;
    if (s == 0.0f) {
        const uint32_t grey = static_cast<uint32_t>(static_cast<int32_t>(l * 255.0f)) & 255;
        return PackColor(grey, grey, grey);
    }
    const float hue = static_cast<float>(color.hue) / 360.0f;
    const float high = l < 0.5f ? (s + 1.0f) * l : l + s - l * s;
    const float low = 2.0f * l - high;
    return PackColor(HslChannel(low, high, hue + 0.33333334f), HslChannel(low, high, hue),
                     HslChannel(low, high, hue - 0.33333334f));
}

} // namespace

Color ShiftKeepingLightness(Color pixel, int32_t red, int32_t green, int32_t blue) {
    HslColour moved = RgbToHsl(
        PackColor(ClampByte(RedOf(pixel) + red), ClampByte(GreenOf(pixel) + green), ClampByte(BlueOf(pixel) + blue)));
    moved.lightness = RgbToHsl(pixel).lightness;
    return HslToRgb(moved);
}

} // namespace lmf
