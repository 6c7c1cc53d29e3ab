// Resize: the picture at another size, by percentages or by pixels. "Interpolate" filters through the window that
// "Filter" names; without it, and for pictures with a palette, single samples are picked by the horizontal percentage
// alone. "Constant" keeps the aspect: one percentage for both axes, or the largest size within Width x Depth.
#include "filters/geometry/resize.h"

#include "engine/filter.h"
#include "image/scale/nearest.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(775, "Interpolate", &P::FilterResizeInterpolate)
        .Help("Mixes neighbouring pixels for smooth edges instead of picking single ones."),
    NumberEdit(770, "Horizontal:", &P::FilterResizeHorz, {5, 5000})
        .In(Unit::Percent)
        .Help("The new width; also the new height where Constant is set or nothing is interpolated."),
    NumberEdit(771, "Vertical:", &P::FilterResizeVert, {5, 5000}).In(Unit::Percent).Help("The new height."),
    CheckBox(774, "Constant", &P::FilterResizeConstant).Help("Keeps the proportions of the picture."),
    Combo(779, "Filter:", &P::FilterResizeFilter, kResampleWindowList)
        .Help("How neighbouring pixels are weighted; Automatic suits most pictures."),
    NumberEdit(777, "Width:", &P::FilterResizeWidth, {8, 32000})
        .In(Unit::Pixels)
        .Help("The new width by dimensions; at most that where Constant is set."),
    NumberEdit(778, "Depth:", &P::FilterResizeDepth, {8, 32000})
        .Restores(800)
        .In(Unit::Pixels)
        .Help("The new height by dimensions; at most that where Constant is set."),
    CheckBox(776, "By dimensions", &P::FilterResizeByDim)
        .Help("Takes the new size in pixels from Width and Depth instead of the percentages."),
    // The size of the result.
    StaticText(772, "%d pixels"),
    StaticText(773, "%d pixels"),
};

// A page clears "By dimensions" along with "Interpolate", so that the percentages need no look at the latter.
constexpr EnableRule kRules[] = {
    EnabledWhileOn(776, &P::FilterResizeInterpolate), EnabledWhileOn(777, &P::FilterResizeInterpolate),
    EnabledWhileOn(778, &P::FilterResizeInterpolate), EnabledWhileOn(777, &P::FilterResizeByDim),
    EnabledWhileOn(778, &P::FilterResizeByDim),       EnabledWhileOff(770, &P::FilterResizeByDim),
    EnabledWhileOff(771, &P::FilterResizeByDim),      EnabledWhileOff(771, &P::FilterResizeConstant),
};

} // namespace

DibHandle ResizePicture(const ReadView &source, int32_t mode, const ResizeParameters &parameters) {
    const int32_t horizontal = parameters.horizontal;
    if (mode == kModePalette || mode == kModeMono || !parameters.interpolate)
        return DibScaleNearest(source, horizontal, horizontal);
    if (!parameters.byDimensions)
        return DibScalePercent(source, horizontal, parameters.constant ? horizontal : parameters.vertical,
                               parameters.windowIndex);
    int32_t width = parameters.width, depth = parameters.depth;
    if (parameters.constant) DibFitAspect(source, &width, &depth);
    return DibScaleTo(source, width, depth, parameters.windowIndex);
}

namespace {

DibHandle ResizeKernel(const ReadView &source, FilterContext &context) {
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

} // namespace

extern constexpr Filter kResize = MakeFilter<kPage, kRules>(ResizeKernel);

} // namespace lmf
