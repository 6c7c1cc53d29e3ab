// Add Alpha: gives the picture a second picture that carries its alpha; the picture itself stays. With "Use mask on
// clipboard", a picture on the clipboard becomes the mask, at whatever size it has; otherwise the whole mask takes the
// value of "Opacity:", 255 for opaque.
#include <cstring>

#include "engine/clipboard_picture.h"
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(200, "Opacity:", &P::FilterAddAlphaOpacity, {0, 255})
        .In(Unit::Levels)
        .Help("Makes the picture transparent at 0 and opaque at 255 where no mask is used."),
    CheckBox(201, "Use mask on clipboard", &P::FilterAddAlphaUseCBD)
        .Help("Takes the transparency from a picture on the clipboard: black is clear and white is opaque."),
};

/// The clipboard's picture in grey, or as it is where it cannot be made grey.
DibHandle MaskFromClipboard(const FilterContext &context) {
    ClipboardLock picture(context);
    if (!picture) return nullptr;
    DibHandle grey = DibToGrey(picture.View());
    return grey != nullptr ? grey : picture.Take();
}

DibHandle UniformMask(const ReadView &source, int32_t opacity) {
    LockedDib mask(DibCreateGrey(source.width, source.height));
    if (!mask) return nullptr;
    for (int32_t y = 0; y < source.height; y++)
        std::memset(mask.View().Row(y), opacity, static_cast<size_t>(source.width));
    return mask.Release();
}

DibHandle AddAlphaKernel(const ReadView &source, FilterContext &context) {
    const bool fromClipboard = context.FilterAddAlphaUseCBD != 0 && HasClipboardPicture(context);
    DibOwner mask(fromClipboard ? MaskFromClipboard(context) : UniformMask(source, context.FilterAddAlphaOpacity));
    if (!mask) return nullptr;
    DibOwner result(DibClone(source));
    if (!result) return nullptr;
    ReplaceSecond(context, mask.Release());
    return result.Release();
}

} // namespace

extern constexpr Filter kAddAlpha = MakeFilter<kPage>(AddAlphaKernel);

} // namespace lmf
