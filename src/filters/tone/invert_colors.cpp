// Invert Colors: the photographic negative. Channels become 255 minus themselves; pictures with a palette other than
// the grey ramp keep their pixels and have the palette inverted. There are no settings.
#include <algorithm>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

LMF_MULTIVERSION
void InvertBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(~from[i]);
}

/// Copies the pixels and inverts the palette that they go through.
void InvertPalette(const PixelPass &pass) {
    Palette768 palette;
    const uint32_t entries = DibReadPalette(pass.from, &palette);
    for (uint32_t i = 0; i < entries * 3; i++) palette.rgb[i] = static_cast<uint8_t>(~palette.rgb[i]);
    DibWritePalette(pass.to, palette);
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const auto bytes = static_cast<size_t>(std::min(to.stride, from.stride));
    for (int32_t y = 0; y < from.height; y++) std::memcpy(to.MemoryRow(y), from.MemoryRow(y), bytes);
}

DibHandle InvertColorsKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    if (context.mode == kModePalette || context.mode == kModeMono)
        InvertPalette(pass);
    else if (context.mode == kModeGrey)
        MapPixels(pass, [](Color value) { return value ^ 0xFF; });
    else
        MapColors(pass, [](uint8_t *to, const uint8_t *from, size_t width) { InvertBytes(to, from, width * 3); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kInvertColors = MakeFilter(InvertColorsKernel);

} // namespace lmf
