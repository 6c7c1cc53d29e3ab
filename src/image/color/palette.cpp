#include "image/color/palette.h"

namespace lmf {

int32_t PaletteNearest(int32_t red, int32_t green, int32_t blue, const Palette768 &palette, int32_t count) {
    const uint8_t *entry = palette.rgb;
    int32_t bestDistance = 1000000; // more than any two colours are apart
    int32_t best = 0;
    for (int32_t i = 0; i < count; i++, entry += 3) {
        const int32_t distance = ColorDistance(red - entry[0], green - entry[1], blue - entry[2]);
        // Only an exact match has distance 0, and the first of several is met first.
        if (distance == 0) return i;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return best;
}

namespace {

uint8_t MixChannel(uint8_t channel0, uint8_t channel1, float t) {
    const float w = 1.0f - t;
    const float mixed = static_cast<float>(channel0) * w + static_cast<float>(channel1) * t;
    // A wild t leaves the integers: such a channel is 0.
    if (!(mixed > -2147483648.0f && mixed < 2147483648.0f)) return 0;
    return static_cast<uint8_t>(static_cast<int32_t>(mixed));
}

} // namespace

Color MixColors(Color color0, Color color1, float t) {
    return PackColor(MixChannel(RedOf(color0), RedOf(color1), t), MixChannel(GreenOf(color0), GreenOf(color1), t),
                     MixChannel(BlueOf(color0), BlueOf(color1), t));
}

} // namespace lmf
