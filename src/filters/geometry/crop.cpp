// Crop: the part of the picture between Left and Right, Top and Bottom, in either order. Right and Bottom are not part
// of it, so that the values a page opens with drop the last column and the last row. Nothing is kept in a file: every
// call starts with the whole picture.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

// Typing ends at 32767; the picture itself may be larger.
static constexpr ControlRange kPixels{0, 32767};
static constexpr PageControl Position(int32_t id, const char *label, NumberField field, RangeSource side) {
    return NumberEdit(id, label, field, kPixels).Stored(0, INT32_MAX).Within(side).In(Unit::Pixels);
}

static constexpr PageControl kPage[] = {
    Position(380, "Left:", &P::FilterCropLeft, RangeSource::PictureWidth),
    Position(381, "Top:", &P::FilterCropTop, RangeSource::PictureHeight),
    Position(382, "Right:", &P::FilterCropRight, RangeSource::PictureWidth),
    Position(383, "Bottom:", &P::FilterCropBottom, RangeSource::PictureHeight),
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

static DibHandle CropKernel(const ReadView &source, FilterContext &context) {
    const CropSpan columns = SpanBetween(context.FilterCropLeft, context.FilterCropRight);
    const CropSpan rows = SpanBetween(context.FilterCropTop, context.FilterCropBottom);
    LockedDib result(DibCreateLike(source, columns.Length(), rows.Length()));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    DibCopyRect(to, 0, 0, source, static_cast<int32_t>(columns.first), static_cast<int32_t>(rows.first),
                columns.Length(), rows.Length());
    return result.Release();
}

static void StartAtWholePicture(FilterContext &context) {
    context.FilterCropLeft = context.FilterCropTop = 0;
    context.FilterCropRight = context.width - 1;
    context.FilterCropBottom = context.height - 1;
}

extern constexpr Filter kCrop = MakeFilter<kPage>(CropKernel, {.startWithPicture = StartAtWholePicture});

} // namespace lmf
