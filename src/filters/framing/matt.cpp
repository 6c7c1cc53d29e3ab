// Matt: mounts the picture on a larger sheet of the paper colour.
// Size is the border in percent of the picture's larger side; Horz. offset and Vert. offset move the picture on the
// sheet, 100 being the middle and 0 and 200 the sides. With Absolute on the sheet has the size of Width and Depth in
// pixels, which start at the picture's own size with every call and are kept in no file.
#include "engine/filter.h"
#include "image/color/paper.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(570, "Size:", &P::FilterMattSize, {1, 100})
        .In(Unit::Percent)
        .Help("Width of the border, of the picture's larger side."),
    Slider(571, "Horz. offset:", &P::FilterMattXOffset, {0, 200})
        .In(Unit::Percent)
        .Help("Place of the picture from left to right: 100 is the middle, 0 and 200 are the sides."),
    Slider(572, "Vert. offset:", &P::FilterMattYOffset, {0, 200})
        .In(Unit::Percent)
        .Help("Place of the picture from top to bottom: 100 is the middle, 0 and 200 are the sides."),
    CheckBox(573, "Absolute", &P::FilterMattAbsolute)
        .Help("Gives the sheet the size of Width and Depth instead of a border."),
    NumberEdit(574, "Width:", &P::FilterMattWidth, {1, 32760})
        .Stored(1, INT32_MAX)
        .In(Unit::Pixels)
        .Help("Width of the sheet."),
    NumberEdit(575, "Depth:", &P::FilterMattDepth, {1, 32760})
        .Stored(1, INT32_MAX)
        .In(Unit::Pixels)
        .Help("Height of the sheet."),
};

/// Length of the sheet along one axis, and where the picture starts on it.
struct Placement {
    int64_t length, start;
};

/// With a border of `border` pixels on each side before the picture is moved.
Placement InBorder(int64_t picture, int64_t border, int32_t offset) {
    return {picture + 2 * border, (offset - 100) * border / 100 + border};
}

Placement OnSheet(int64_t picture, int64_t sheet, int32_t offset) {
    return {sheet, (sheet - picture) / 2 * offset / 100};
}

DibHandle MattKernel(const ReadView &source, FilterContext &context) {
    const int64_t border = int64_t{std::max(source.width, source.height)} * context.FilterMattSize / 100;
    const bool absolute = context.FilterMattAbsolute != 0;
    const Placement across = absolute ? OnSheet(source.width, context.FilterMattWidth, context.FilterMattXOffset)
                                      : InBorder(source.width, border, context.FilterMattXOffset);
    const Placement down = absolute ? OnSheet(source.height, context.FilterMattDepth, context.FilterMattYOffset)
                                    : InBorder(source.height, border, context.FilterMattYOffset);
    if (across.length > INT32_MAX || down.length > INT32_MAX) return nullptr;
    LockedDib result(DibCreateLike(source, static_cast<int32_t>(across.length), static_cast<int32_t>(down.length)));
    if (!result) return nullptr;
    const auto x = static_cast<int32_t>(across.start), y = static_cast<int32_t>(down.start);
    DibCopyRect(result.View(), x, y, source, 0, 0, source.width, source.height);
    DibFillAround(result.View(), x, y, source.width, source.height,
                  PaperFillValue(context.paperColor, context.mode, source));
    return result.Release();
}

void StartAtSourceSize(FilterContext &context) {
    context.FilterMattWidth = context.width;
    context.FilterMattDepth = context.height;
}

} // namespace

extern constexpr Filter kMatt = MakeFilter<kPage>(MattKernel, {.startWithPicture = StartAtSourceSize});

} // namespace lmf
