// Crop: the part of the picture between Left and Right, Top and Bottom, in either order. Right and Bottom are not part
// of it, so that the values a page opens with drop the last column and the last row. Nothing is kept in a file: every
// call starts with the whole picture.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

// Typing ends at 32767; the picture itself may be larger.
constexpr ControlRange kPixels{0, 32767};
constexpr PageControl Position(int32_t id, const char *label, NumberField field, RangeSource side, const char *help) {
    return NumberEdit(id, label, field, kPixels).Stored(0, INT32_MAX).Within(side).In(Unit::Pixels).Help(help);
}

constexpr PageControl kPage[] = {
    Position(380, "Left:", &P::FilterCropLeft, RangeSource::PictureWidth, "The first column that is kept."),
    Position(381, "Top:", &P::FilterCropTop, RangeSource::PictureHeight, "The first row that is kept."),
    Position(382, "Right:", &P::FilterCropRight, RangeSource::PictureWidth,
             "The column behind the last one that is kept."),
    Position(383, "Bottom:", &P::FilterCropBottom, RangeSource::PictureHeight,
             "The row below the last one that is kept."),
    // The size of the part and that of the whole picture.
    StaticText(384, "Width: %d (%d)"),
    StaticText(385, "Depth: %d (%d)"),
    PictureArea(386),
};

/// Positions first <= i < last along one axis.
struct CropSpan {
    int32_t first, last;

    int32_t Length() const { return last - first; }
};

CropSpan SpanBetween(int32_t a, int32_t b) {
    CropSpan span{std::min(a, b), std::max(a, b)};
    if (span.first < span.last) return span;
    if (span.first == 0)
        span.last++;
    else
        span.first--;
    return span;
}

DibHandle CropKernel(const ReadView &source, FilterContext &context) {
    const CropSpan columns = SpanBetween(context.FilterCropLeft, context.FilterCropRight);
    const CropSpan rows = SpanBetween(context.FilterCropTop, context.FilterCropBottom);
    LockedDib result(DibCreateLike(source, columns.Length(), rows.Length()));
    if (!result) return nullptr;
    DibCopyRect(result.View(), 0, 0, source, columns.first, rows.first, columns.Length(), rows.Length());
    return result.Release();
}

void StartAtWholePicture(FilterContext &context) {
    context.FilterCropLeft = context.FilterCropTop = 0;
    context.FilterCropRight = context.width - 1;
    context.FilterCropBottom = context.height - 1;
}

} // namespace

extern constexpr Filter kCrop = MakeFilter<kPage>(CropKernel, {.startWithPicture = StartAtWholePicture});

} // namespace lmf
