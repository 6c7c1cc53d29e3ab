// Add Alpha: gives the picture a second picture that carries its alpha; the picture itself stays. With "Use mask on
// clipboard", a picture on the clipboard becomes the mask, at whatever size it has; otherwise the whole mask takes the
// value of "Opacity:", 255 for opaque.
#include <cstring>

#include "engine/slots.h"
#include "image/dib_ops.h"
#include "platform/clipboard.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(200, "Opacity:", &FilterParameters::FilterAddAlphaOpacity, {0, 255}),
    CheckBox(201, "Use mask on clipboard", &FilterParameters::FilterAddAlphaUseCBD),
};

/// The clipboard's picture in grey, or as it is where it cannot be made grey.
static DibHandle MaskFromClipboard(void *owner) {
    DibOwner copy(ClipboardPicture(owner));
    if (!copy) return nullptr;
    DibHandle grey = DibToGrey(copy.handle);
    return grey != nullptr ? grey : copy.Release();
}

static DibHandle UniformMask(DibHandle source, int32_t opacity) {
    int32_t width = 0, height = 0;
    if (!DibInfo(source, &width, &height, nullptr, nullptr)) return nullptr;
    DibOwner mask(DibCreateGrey(width, height));
    DibLock lock(mask.handle);
    if (!lock) return nullptr;
    for (int32_t y = 0; y < height; y++) std::memset(lock.view.MemoryRow(y), opacity, static_cast<size_t>(width));
    lock.Unlock();
    return mask.Release();
}

static DibHandle AddAlphaKernel(DibHandle source, FilterContext *context) {
    const bool fromClipboard = context->FilterAddAlphaUseCBD != 0 && ClipboardHasPicture();
    DibOwner mask(fromClipboard ? MaskFromClipboard(context->ownerWindow)
                                : UniformMask(source, context->FilterAddAlphaOpacity));
    if (!mask) return nullptr;
    DibOwner result(DibClone(source));
    if (!result) return nullptr;
    BlockFree(context->secondResult);
    context->secondResult = mask.Release();
    return result.Release();
}

extern constexpr FilterSlots kAddAlpha = MakeSlots<kPage>(AddAlphaKernel);

} // namespace lmf
