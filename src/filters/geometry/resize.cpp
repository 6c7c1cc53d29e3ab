// Resize: the picture at another size, by percentages or by pixels. "Interpolate" filters through the window that
// "Filter" names; without it, and for pictures with a palette, single samples are picked by the horizontal percentage
// alone. "Constant" keeps the aspect: one percentage for both axes, or the largest size within Width x Depth.
#include "filters/geometry/resize.h"

#include "engine/filter.h"
#include "image/scale/nearest.h"
#include "image/scale/resample.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(775, "Interpolate", &P::FilterResizeInterpolate),
    NumberEdit(770, "Horizontal:", &P::FilterResizeHorz, {5, 5000}),
    NumberEdit(771, "Vertical:", &P::FilterResizeVert, {5, 5000}),
    CheckBox(774, "Constant", &P::FilterResizeConstant),
    Combo(779, "Filter:", &P::FilterResizeFilter, kResampleWindowList),
    NumberEdit(777, "Width:", &P::FilterResizeWidth, {8, 32000}),
    NumberEdit(778, "Depth:", &P::FilterResizeDepth, {8, 32000}).Restores(800),
    CheckBox(776, "By dimensions", &P::FilterResizeByDim),
};

DibHandle ResizePicture(const ReadView &source, int32_t mode, const ResizeParameters &parameters) {
    const int32_t horizontal = parameters.horizontal;
    if (mode == kModePalette || mode == kModeMono || !parameters.interpolate)
        return DibScaleNearest(source, horizontal, horizontal);
    if (!parameters.byDimensions)
        return DibScalePercent(source, horizontal, parameters.constant ? horizontal : parameters.vertical,
                               parameters.windowIndex);
    int32_t width = parameters.width, depth = parameters.depth;
    if (parameters.constant && !DibFitAspect(source, &width, &depth)) return nullptr;
    return DibScaleTo(source, width, depth, parameters.windowIndex);
}

static DibHandle ResizeKernel(const ReadView &source, FilterContext &context) {
    ResizeParameters parameters;
    parameters.interpolate = context.FilterResizeInterpolate != 0;
    parameters.horizontal = context.FilterResizeHorz;
    parameters.vertical = context.FilterResizeVert;
    parameters.constant = context.FilterResizeConstant != 0;
    parameters.windowIndex = context.FilterResizeFilter;
    parameters.byDimensions = context.FilterResizeByDim != 0;
    parameters.width = context.FilterResizeWidth;
    parameters.depth = context.FilterResizeDepth;
    return ResizePicture(source, context.mode, parameters);
}

extern constexpr Filter kResize = MakeFilter<kPage>(ResizeKernel);

} // namespace lmf
