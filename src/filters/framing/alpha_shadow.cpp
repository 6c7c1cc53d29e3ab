// Alpha shadow: throws the shadow of what the second picture shows as opaque on what it shows as transparent.
// Size is the distance of the shadow in pixels, Softness the width of its edge, Opacity its strength and Direction the
// corner towards which it falls. Both pictures keep their size: the second one becomes opaque where the shadow is, and
// there the picture takes the shadow's colour. Without a second picture nothing is transparent and the picture stays.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/soft_shadow.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/core/dib_ops.h"
#include "image/core/div255.h"
#include "image/geometry/corner.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(220, "Opacity:", &P::FilterAlphaShadowOpacity, {1, 255})
        .In(Unit::Levels)
        .Help("Makes the shadow stronger, up to its full color."),
    Slider(221, "Size:", &P::FilterAlphaShadowSize, {1, 128})
        .In(Unit::Pixels)
        .Help("Distance of the shadow from what casts it, along both axes."),
    Slider(222, "Softness:", &P::FilterAlphaShadowSoft, {0, 40})
        .In(Unit::Pixels, 10)
        .Help("Width of the shadow's soft edge."),
    Combo(223, "Direction:", &P::FilterAlphaShadowDirection, kCornerList)
        .Help("The corner of the picture towards which the shadow falls."),
    ColorButton(224, "Color", &P::FilterAlphaShadowColor).Help("Color of the shadow."),
};

/// The second picture as a grey one of the picture's size, transparent where it does not reach.
DibHandle OutlineOf(const ReadView &picture, const ReadView &second) {
    LockedDib outline(DibCreateGrey(picture.width, picture.height));
    if (outline) DibCopyRect(outline.View(), 0, 0, second, 0, 0, second.width, second.height);
    return outline.Release();
}

/// What a row of the picture becomes that is laid over the shadow (T. Porter and T. Duff, "Compositing digital images",
/// 1984; colours are not multiplied by alpha): its alpha, and in `shares` how much of the colour is the shadow's.
LMF_MULTIVERSION
void LayOverShadow(uint8_t *__restrict shares, uint8_t *__restrict alpha, const uint8_t *__restrict shadow,
                   int32_t opacity, int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        // In 65025ths: what of the shadow shows through the picture, and what both cover together.
        const int32_t shows = (255 - alpha[x]) * RoundedDiv255(static_cast<uint16_t>(shadow[x] * opacity));
        const int32_t both = alpha[x] * 255 + shows;
        const float share = 255.0f * static_cast<float>(shows) / static_cast<float>(both > 0 ? both : 1);
        shares[x] = static_cast<uint8_t>(static_cast<int32_t>(share + 0.5f));
        alpha[x] = static_cast<uint8_t>(RoundedDiv255(static_cast<uint16_t>(both)));
    }
}

DibHandle AlphaShadowKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const WriteView &to = pass.To();
    for (int32_t y = 0; y < to.height; y++)
        std::memcpy(to.Row(y), pass.From().Row(y), static_cast<size_t>(to.width) * 3);
    const DibReadLock second(context.second);
    if (!second) return pass.Finish();

    LockedDib outline(OutlineOf(source, second.view));
    if (!outline) return nullptr;
    const Corner corner(context.FilterAlphaShadowDirection);
    const int32_t distance = context.FilterAlphaShadowSize;
    const LockedDib shadow(
        ThrownShadow(outline, corner.X() * distance, corner.Y() * distance, context.FilterAlphaShadowSoft));
    if (!shadow) return nullptr;
    BlockArray<uint8_t> shares(static_cast<uint64_t>(to.width));
    if (!shares) return nullptr;
    for (int32_t y = 0; y < to.height; y++) {
        LayOverShadow(shares.data, outline.View().Row(y), shadow.View().Row(y), context.FilterAlphaShadowOpacity,
                      to.width);
        TintRow(to.Row(y), shares.data, to.width, static_cast<Color>(context.FilterAlphaShadowColor));
    }
    ReplaceSecond(context, outline.Release());
    return pass.Finish();
}

} // namespace

extern constexpr Filter kAlphaShadow = MakeFilter<kPage>(AlphaShadowKernel);

} // namespace lmf
