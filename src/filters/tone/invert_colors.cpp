// Invert Colors: the photographic negative. Channels become 255 minus themselves; pictures with a palette other than
// the grey ramp keep their pixels and have the palette inverted. There are no settings.
#include <cstring>

#include "engine/slots.h"
#include "image/multiversion.h"

namespace lmf {

LMF_MULTIVERSION
static void InvertBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(~from[i]);
}

/// Row by row, so that the padding stays 0.
static void InvertRows(const DibView &to, const DibView &from, size_t rowBytes) {
    for (int32_t y = 0; y < from.height; y++) InvertBytes(to.MemoryRow(y), from.MemoryRow(y), rowBytes);
}

/// Any depth: flips the bits of `flip` and keeps those of `keep`.
static void InvertThroughPixels(const DibLock &to, const DibLock &from, uint32_t flip, uint32_t keep) {
    for (int32_t y = 0; y < from.view.height; y++) {
        for (int32_t x = 0; x < from.view.width; x++)
            DibSetPixel(to.image, x, y, (DibGetPixel(from.image, x, y) ^ flip) & keep);
    }
}

static DibHandle InvertColorsKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const bool byPalette = context->mode == kModePalette || context->mode == kModeMono;
    Palette768 palette;
    const uint32_t entries = DibReadPalette(from.image, &palette);
    if (byPalette) InvertBytes(palette.rgb, Palette768(palette).rgb, entries * 3);

    DibOwner result(DibCreate(from.view.width, from.view.height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const size_t rowBytes = static_cast<size_t>(from.view.width) * from.view.bits / 8;
    if (byPalette && to.view.stride == from.view.stride)
        std::memcpy(to.view.bottom, from.view.bottom,
                    static_cast<size_t>(from.view.stride) * static_cast<size_t>(from.view.height));
    else if (context->mode == kModeGrey && from.view.bits == 8)
        InvertRows(to.view, from.view, rowBytes);
    else if (context->mode == kModeGrey)
        InvertThroughPixels(to, from, 0xFF, 0xFFFFFFFF);
    else if (from.view.bits == 24)
        InvertRows(to.view, from.view, rowBytes);
    else
        InvertThroughPixels(to, from, 0xFFFFFF, 0xFFFFFF);
    to.Unlock();
    return result.Release();
}

extern constexpr FilterSlots kInvertColors = MakeSlots(InvertColorsKernel);

} // namespace lmf
