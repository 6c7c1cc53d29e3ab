// Invert Colors: the photographic negative. Channels become 255 minus themselves; pictures with a palette other than
// the grey ramp keep their pixels and have the palette inverted. There are no settings.
#include <algorithm>
#include <cstring>

#include "engine/slots.h"
#include "image/multiversion.h"
#include "image/pixel_map.h"

namespace lmf {

LMF_MULTIVERSION
static void InvertBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(~from[i]);
}

static DibHandle InvertPalette(DibHandle source) {
    DibLock from(source);
    if (!from) return nullptr;
    Palette768 palette;
    const uint32_t entries = DibReadPalette(from.image, &palette);
    InvertBytes(palette.rgb, Palette768(palette).rgb, entries * 3);
    DibOwner result(DibCreate(from.view.width, from.view.height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const auto bytes = static_cast<size_t>(std::min(to.view.stride, from.view.stride));
    for (int32_t y = 0; y < from.view.height; y++) std::memcpy(to.view.MemoryRow(y), from.view.MemoryRow(y), bytes);
    to.Unlock();
    return result.Release();
}

static DibHandle InvertColorsKernel(DibHandle source, FilterContext *context) {
    if (context->mode == kModePalette || context->mode == kModeMono) return InvertPalette(source);
    PixelPass pass(source);
    if (!pass) return nullptr;
    if (context->mode == kModeGrey)
        MapPixels(pass, [](Color value) { return value ^ 0xFF; });
    else
        MapColors(pass, [](uint8_t *to, const uint8_t *from, size_t width) { InvertBytes(to, from, width * 3); });
    return pass.Finish();
}

extern constexpr FilterSlots kInvertColors = MakeSlots(InvertColorsKernel);

} // namespace lmf
