// Implode: magnifies what lies about a point. The amount is the strength in percent; the offsets are the point's place
// in percent of the sides, and with it the reach: it ends at an ellipse through the left or the upper edge.
#include "engine/filter.h"
#include "image/geometry/pinch.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(530, "Amount:", &P::FilterImplodeRadius, {1, 100})
        .In(Unit::Percent)
        .Help("How strongly the picture swells around the centre of the effect."),
    Slider(531, "Horz. Offset:", &P::FilterImplodeXOff, {10, 90})
        .In(Unit::Percent)
        .Help("Where the centre lies across the picture; in wide pictures also how far the effect reaches."),
    Slider(532, "Vert. Offset:", &P::FilterImplodeYOff, {10, 90})
        .In(Unit::Percent)
        .Help("Where the centre lies down the picture; in tall pictures also how far the effect reaches."),
};

DibHandle ImplodeKernel(const ReadView &source, FilterContext &context) {
    return DibPinch(source, context.FilterImplodeRadius / 100.0, context.FilterImplodeXOff / 100.0,
                    context.FilterImplodeYOff / 100.0, context.paperColor);
}

} // namespace

extern constexpr Filter kImplode = MakeFilter<kPage>(ImplodeKernel);

} // namespace lmf
