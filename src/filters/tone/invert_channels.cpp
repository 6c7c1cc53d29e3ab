// Invert Channels: mixes each channel with its negative. A channel's setting is the share of the original out of 255:
// 255 keeps it, 0 inverts it.
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1200, "Red:", &P::FilterInvertChannelsRed, {0, 255})
        .Track(8)
        .Help("Keeps red at 255 and turns it into its negative at 0; between them it loses contrast."),
    Slider(1201, "Green:", &P::FilterInvertChannelsGreen, {0, 255})
        .Track(9)
        .Help("Keeps green at 255 and turns it into its negative at 0; between them it loses contrast."),
    Slider(1202, "Blue:", &P::FilterInvertChannelsBlue, {0, 255})
        .Track(10)
        .Help("Keeps blue at 255 and turns it into its negative at 0; between them it loses contrast."),
};

/// Quotients in double, products and their sum in single precision.
ToneTable MixedWithNegative(int32_t share) {
    const auto factor = static_cast<float>(share / 255.0);
    const auto rest = static_cast<float>(1.0 - factor);
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) {
        const auto negative = static_cast<float>((255 - i) / 255.0 * rest);
        const auto original = static_cast<float>(i / 255.0 * factor);
        table.at[i] = static_cast<uint8_t>((negative + original) * 255.0);
    }
    return table;
}

DibHandle InvertChannelsKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    MapChannels(pass, {MixedWithNegative(context.FilterInvertChannelsRed),
                       MixedWithNegative(context.FilterInvertChannelsGreen),
                       MixedWithNegative(context.FilterInvertChannelsBlue)});
    return pass.Finish();
}

} // namespace

extern constexpr Filter kInvertChannels = MakeFilter<kPage>(InvertChannelsKernel);

} // namespace lmf
