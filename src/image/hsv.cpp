#include "image/hsv.h"

#include <cmath>

namespace lmf {

Hsv RgbToHsv(Color color) {
    const float red = static_cast<float>(RedOf(color)) / 255.0f;
    const float green = static_cast<float>(GreenOf(color)) / 255.0f;
    const float blue = static_cast<float>(BlueOf(color)) / 255.0f;
    const float largest = std::max({red, green, blue});
    const float range = largest - std::min({red, green, blue});
    if (largest == 0.0f) return {-1.0f, 0.0f, 0.0f};

    const float divisor = range == 0.0f ? 1.0f : range;
    float hue;
    if (red == largest)
        hue = (green - blue) / divisor;
    else if (green == largest)
        hue = 2.0f + (blue - red) / divisor;
    else
        hue = 4.0f + (red - green) / divisor;
    hue = 60.0f * hue;
    if (hue < 0.0f) hue = hue + 360.0f;
    return {hue, range / largest, largest};
}

/// A channel of 0 to 1 as a byte; what is not a number counts as 0.
static uint32_t ChannelByte(float channel) {
    const float scaled = channel * 255.0f;
    if (!(scaled > 0.0f)) return 0;
    return scaled < 255.0f ? static_cast<uint32_t>(scaled) : 255;
}

static Color PackChannels(float red, float green, float blue) {
    return PackColor(ChannelByte(red), ChannelByte(green), ChannelByte(blue));
}

Color HsvToRgb(const Hsv &hsv) {
    const float saturation = hsv.saturation > 1.0f ? 1.0f : hsv.saturation;
    const float value = hsv.value > 1.0f ? 1.0f : hsv.value;
    if (saturation == 0.0f) return PackChannels(value, value, value);

    const float turn = hsv.hue / 60.0f;
    // Kept as a float: a hue of any size must find its sector without overflow.
    const float sector = std::floor(turn);
    const float fraction = turn - sector;
    const float p = (1.0f - saturation) * value;
    const float q = (1.0f - fraction * saturation) * value;
    const float u = (1.0f - (1.0f - fraction) * saturation) * value;
    if (sector == 0.0f) return PackChannels(value, u, p);
    if (sector == 1.0f) return PackChannels(q, value, p);
    if (sector == 2.0f) return PackChannels(p, value, u);
    if (sector == 3.0f) return PackChannels(p, q, value);
    if (sector == 4.0f) return PackChannels(u, p, value);
    return PackChannels(value, p, q);
}

} // namespace lmf
