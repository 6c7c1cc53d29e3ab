// Crop: the part of the picture between Left and Right, Top and Bottom, in either order. Right and Bottom are not part
// of it, so that the values a page opens with drop the last column and the last row. Nothing is kept in a file: every
// call starts with the whole picture.
#include "engine/slots.h"
#include "image/dib_ops.h"

namespace lmf {

static constexpr ControlRange kPixels{0, 32767};
static constexpr PageControl kPage[] = {
    NumberEdit(380, "Left:", &FilterParameters::FilterCropLeft, kPixels),
    NumberEdit(381, "Top:", &FilterParameters::FilterCropTop, kPixels),
    NumberEdit(382, "Right:", &FilterParameters::FilterCropRight, kPixels),
    NumberEdit(383, "Bottom:", &FilterParameters::FilterCropBottom, kPixels),
};

/// Positions first <= i < last along one axis.
struct CropSpan {
    int64_t first, last;

    int32_t Length() const { return static_cast<int32_t>(std::min<int64_t>(last - first, INT32_MAX)); }
};

static CropSpan SpanBetween(int32_t a, int32_t b) {
    CropSpan span{std::min(a, b), std::max(a, b)};
    if (span.first < span.last) return span;
    if (span.first < 1)
        span.last++;
    else
        span.first--;
    return span;
}

static DibHandle CropKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const CropSpan columns = SpanBetween(context->FilterCropLeft, context->FilterCropRight);
    const CropSpan rows = SpanBetween(context->FilterCropTop, context->FilterCropBottom);
    DibOwner result(DibCreateLike(from, columns.Length(), rows.Length()));
    DibLock to(result.handle);
    if (!to) return nullptr;
    DibCopyRect(to.image, 0, 0, from.image, static_cast<int32_t>(columns.first), static_cast<int32_t>(rows.first),
                columns.Length(), rows.Length());
    to.Unlock();
    return result.Release();
}

static uint32_t StartAtWholePicture(FilterContext *context) {
    if (ValidationState == 0) return 0;
    context->FilterCropLeft = context->FilterCropTop = 0;
    context->FilterCropRight = context->width - 1;
    context->FilterCropBottom = context->height - 1;
    return 1;
}

static constexpr FilterSlots MakeCropSlots() {
    FilterSlots slots = MakeSlots<kPage>(CropKernel);
    slots.LoadSettings = StartAtWholePicture;
    slots.ResetDefaults = StartAtWholePicture;
    return slots;
}
extern constexpr FilterSlots kCrop = MakeCropSlots();

} // namespace lmf
