// Add Alpha: gives the picture a second picture that carries its alpha; the picture itself stays. With "Use mask on
// clipboard", a picture on the clipboard becomes the mask, at whatever size it has; otherwise the whole mask takes the
// value of "Opacity:", 255 for opaque.
#include <cstring>

#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "platform/clipboard.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(200, "Opacity:", &P::FilterAddAlphaOpacity, {0, 255}),
    CheckBox(201, "Use mask on clipboard", &P::FilterAddAlphaUseCBD),
};

/// The clipboard's picture in grey, or as it is where it cannot be made grey.
static DibHandle MaskFromClipboard(void *owner) {
    LockedDib copy(ClipboardPicture(owner));
    if (!copy) return nullptr;
    DibHandle grey = DibToGrey(copy);
    return grey != nullptr ? grey : copy.Release();
}

static DibHandle UniformMask(const ReadView &source, int32_t opacity) {
    const int32_t width = source.width, height = source.height;
    LockedDib mask(DibCreateGrey(width, height));
    const WriteView &lock = mask.View();
    if (!mask) return nullptr;
    for (int32_t y = 0; y < height; y++) std::memset(lock.MemoryRow(y), opacity, static_cast<size_t>(width));
    return mask.Release();
}

static DibHandle AddAlphaKernel(const ReadView &source, FilterContext &context) {
    const bool fromClipboard = context.FilterAddAlphaUseCBD != 0 && ClipboardHasPicture();
    DibOwner mask(fromClipboard ? MaskFromClipboard(context.ownerWindow)
                                : UniformMask(source, context.FilterAddAlphaOpacity));
    if (!mask) return nullptr;
    DibOwner result(DibClone(source));
    if (!result) return nullptr;
    ReplaceSecond(context, mask.Release());
    return result.Release();
}

extern constexpr Filter kAddAlpha = MakeFilter<kPage>(AddAlphaKernel);

} // namespace lmf
