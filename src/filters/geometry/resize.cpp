// Resize: the picture at another size, by percentages or by pixels. "Interpolate" filters through the window that
// "Filter" names; without it, and for pictures with a palette, single samples are picked by the horizontal percentage
// alone. "Constant" keeps the aspect: one percentage for both axes, or the largest size within Width x Depth.
#include "filters/geometry/resize.h"

#include "engine/slots.h"
#include "image/nearest.h"
#include "image/resample.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(775, "Interpolate", &FilterParameters::FilterResizeInterpolate),
    NumberEdit(770, "Horizontal:", &FilterParameters::FilterResizeHorz, {5, 5000}),
    NumberEdit(771, "Vertical:", &FilterParameters::FilterResizeVert, {5, 5000}),
    CheckBox(774, "Constant", &FilterParameters::FilterResizeConstant),
    Combo(779, "Filter:", &FilterParameters::FilterResizeFilter, kResampleWindowList),
    NumberEdit(777, "Width:", &FilterParameters::FilterResizeWidth, {8, 32000}),
    NumberEdit(778, "Depth:", &FilterParameters::FilterResizeDepth, {8, 32000}).Restores(800),
    CheckBox(776, "By dimensions", &FilterParameters::FilterResizeByDim),
};

DibHandle ResizePicture(DibHandle source, int32_t mode, const ResizeParameters &parameters) {
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

static DibHandle ResizeKernel(DibHandle source, FilterContext *context) {
    ResizeParameters parameters;
    parameters.interpolate = context->FilterResizeInterpolate != 0;
    parameters.horizontal = context->FilterResizeHorz;
    parameters.vertical = context->FilterResizeVert;
    parameters.constant = context->FilterResizeConstant != 0;
    parameters.windowIndex = context->FilterResizeFilter;
    parameters.byDimensions = context->FilterResizeByDim != 0;
    parameters.width = context->FilterResizeWidth;
    parameters.depth = context->FilterResizeDepth;
    return ResizePicture(source, context->mode, parameters);
}

extern constexpr FilterSlots kResize = MakeSlots<kPage>(ResizeKernel);

} // namespace lmf
