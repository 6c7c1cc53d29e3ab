#include "image/color/hsv.h"

#include <cmath>

#include "common/multiversion.h"

namespace lmf {

namespace {

// Both conversions choose between values instead of branching, so that loops over them become vector code.

inline Hsv HsvOf(int32_t redByte, int32_t greenByte, int32_t blueByte) {
    const float red = static_cast<float>(redByte) / 255.0f;
    const float green = static_cast<float>(greenByte) / 255.0f;
    const float blue = static_cast<float>(blueByte) / 255.0f;
    const float largest = std::max(std::max(red, green), blue);
    const float range = largest - std::min(std::min(red, green), blue);

    const bool isRed = red == largest, isGreen = green == largest, isBlack = largest == 0.0f;
    const float difference = isRed ? green - blue : isGreen ? blue - red : red - green;
    const float start = isRed ? 0.0f : isGreen ? 2.0f : 4.0f;
    const float hue = 60.0f * (start + difference / (range == 0.0f ? 1.0f : range));
    const float saturation = range / (isBlack ? 1.0f : largest);
    return {isBlack ? -1.0f : hue < 0.0f ? hue + 360.0f : hue, saturation, largest};
}

/// A channel of 0 to 1 as a byte; what is not a number counts as 0.
inline int32_t ChannelByte(float channel) {
    float scaled = channel * 255.0f;
    scaled = scaled > 0.0f ? scaled : 0.0f;
    return static_cast<int32_t>(scaled < 255.0f ? scaled : 255.0f);
}

struct Channels {
    int32_t red, green, blue;
};

inline Channels ChannelsOf(const Hsv &hsv) {
    const float saturation = hsv.saturation > 1.0f ? 1.0f : hsv.saturation;
    const float value = hsv.value > 1.0f ? 1.0f : hsv.value;
    // Without saturation p, q and u all come out as the value, whatever the hue.
    const float turn = hsv.hue / 60.0f;
    // Kept as a float: a hue of any size must find its sector without overflow.
    const float sector = std::floor(turn);
    const float fraction = turn - sector;
    const float p = (1.0f - saturation) * value;
    const float q = (1.0f - fraction * saturation) * value;
    const float u = (1.0f - (1.0f - fraction) * saturation) * value;

    float red = value, green = p, blue = q;
    const auto inSector = [&](float number, float redThere, float greenThere, float blueThere) {
        red = sector == number ? redThere : red;
        green = sector == number ? greenThere : green;
        blue = sector == number ? blueThere : blue;
    };
    inSector(0.0f, value, u, p);
    inSector(1.0f, q, value, p);
    inSector(2.0f, p, value, u);
    inSector(3.0f, p, q, value);
    inSector(4.0f, u, p, value);
    return {ChannelByte(red), ChannelByte(green), ChannelByte(blue)};
}

} // namespace

Hsv RgbToHsv(Color color) {
    return HsvOf(RedOf(color), GreenOf(color), BlueOf(color));
}

Color HsvToRgb(const Hsv &hsv) {
    const Channels channels = ChannelsOf(hsv);
    return PackColor(static_cast<uint32_t>(channels.red), static_cast<uint32_t>(channels.green),
                     static_cast<uint32_t>(channels.blue));
}

LMF_MULTIVERSION
void AdjustHsvRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels, const HsvChange &change) {
    const float hueOffset = change.hueOffset, saturationScale = change.saturationScale, valueScale = change.valueScale;
    for (size_t i = 0; i < pixels * 3; i += 3) {
        const Hsv hsv = HsvOf(from[i + 2], from[i + 1], from[i]);
        const Channels channels =
            ChannelsOf({hsv.hue + hueOffset, hsv.saturation * saturationScale, hsv.value * valueScale});
        to[i] = static_cast<uint8_t>(channels.blue);
        to[i + 1] = static_cast<uint8_t>(channels.green);
        to[i + 2] = static_cast<uint8_t>(channels.red);
    }
}

} // namespace lmf
