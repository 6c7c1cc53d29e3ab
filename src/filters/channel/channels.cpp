// Channels: exchanges or repeats the channels of each pixel. "Mode:" names the exchange: two channels swapped, all
// three rotated, two inks swapped, or one channel copied over another.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(310, "Mode:", &P::FilterChannelMode,
          "Red - Blue;Red - Green;Green - Blue;Left 1;Left 2;Right 1;Right 2;Cyan - Magenta;Megenta - Yellow;"
          "Yellow - Cyan;Red to Yellow;Red to Magenta;Green to Yellow;Green to Cyan;Blue to Magenta;Blue to Cyan")
        .Help("Chooses which of red, green and blue change places, or which one is copied over another."),
};

/// The source channel (0 red, 1 green, 2 blue) of each channel of the result.
struct ChannelSources {
    uint8_t red, green, blue;
};

constexpr ChannelSources kModes[] = {
    {2, 1, 0}, {1, 0, 2}, {0, 2, 1}, // two channels swapped
    {1, 2, 0}, {2, 0, 1},            // rotated left; "Left 2" is the rotation the other way
    {2, 0, 1}, {1, 2, 0},            // rotated right: the same two in the other order
    {1, 0, 2}, {0, 2, 1}, {2, 1, 0}, // two inks swapped
    {0, 0, 2}, {0, 1, 0}, {1, 1, 2}, {0, 1, 1}, {2, 1, 2}, {0, 2, 2}, // one channel over another
};

/// Swapping inks means a trip through cyan, magenta and yellow and back.
constexpr int32_t ThroughInk(int32_t channel) {
    return static_cast<int32_t>((1.0 - ((255 - channel) / 255.0 + 0.0)) * 255.0 + 0.5) & 255;
}

constexpr bool InkTripChangesNothing() {
    for (int32_t channel = 0; channel < 256; channel++)
        if (ThroughInk(channel) != channel) return false;
    return true;
}
static_assert(InkTripChangesNothing(), "so that the ink modes are plain exchanges too");

using Bytes16 = uint8_t __attribute__((vector_size(16)));

[[gnu::always_inline]] inline Bytes16 Shuffle(const Bytes16 &bytes, const Bytes16 &order) {
#if __has_builtin(__builtin_shuffle)
    return __builtin_shuffle(bytes, order);
#else
    Bytes16 shuffled;
    for (int32_t i = 0; i < 16; i++) shuffled[i] = bytes[order[i]];
    return shuffled;
#endif
}

/// Five pixels a step by one shuffle of 16 bytes; the sixteenth byte belongs to the next step.
LMF_MULTIVERSION
void ShuffleRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, const Bytes16 &order) {
    size_t x = 0;
    for (; x * 3 + 16 <= width * 3; x += 5) {
        Bytes16 pixels;
        std::memcpy(&pixels, from + x * 3, sizeof pixels);
        pixels = Shuffle(pixels, order);
        std::memcpy(to + x * 3, &pixels, sizeof pixels);
    }
    for (; x < width; x++)
        for (size_t channel = 0; channel < 3; channel++) to[x * 3 + channel] = from[x * 3 + order[channel]];
}

DibHandle ChannelsKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ChannelSources sources = kModes[context.FilterChannelMode];
    // Bytes lie as blue, green, red.
    Bytes16 order{};
    for (uint8_t i = 0; i < 15; i += 3) {
        order[i] = static_cast<uint8_t>(i + 2 - sources.blue);
        order[i + 1] = static_cast<uint8_t>(i + 2 - sources.green);
        order[i + 2] = static_cast<uint8_t>(i + 2 - sources.red);
    }
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { ShuffleRow(to, from, width, order); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kChannels = MakeFilter<kPage>(ChannelsKernel);

} // namespace lmf
