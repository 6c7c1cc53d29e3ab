// Explode: draws together what lies about a point. The amount is the strength in percent; the offsets are the point's
// place in percent of the sides, and with it the reach: it ends at an ellipse through the left or the upper edge.
#include "engine/filter.h"
#include "image/geometry/pinch.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(430, "Amount:", &P::FilterExplodeRadius, {1, 100})
        .In(Unit::Percent)
        .Help("How strongly the picture shrinks towards the centre of the effect."),
    Slider(431, "Horz. Offset:", &P::FilterExplodeXOff, {10, 90})
        .In(Unit::Percent)
        .Help("Where the centre lies across the picture; in wide pictures also how far the effect reaches."),
    Slider(432, "Vert. Offset:", &P::FilterExplodeYOff, {10, 90})
        .In(Unit::Percent)
        .Help("Where the centre lies down the picture; in tall pictures also how far the effect reaches."),
};

DibHandle ExplodeKernel(const ReadView &source, FilterContext &context) {
    return DibPinch(source, -(context.FilterExplodeRadius / 100.0), context.FilterExplodeXOff / 100.0,
                    context.FilterExplodeYOff / 100.0, context.paperColor);
}

} // namespace

extern constexpr Filter kExplode = MakeFilter<kPage>(ExplodeKernel);

} // namespace lmf
