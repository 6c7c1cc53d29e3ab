// Corners: rounds off the picture's corners, as those of an old print.
// Corner size is the radius in pixels. Edge size is the width of a darker rim along the rounded outline, 0 for none,
// and Edge density its strength. With Alpha on, the outline also goes into the second picture as transparency.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(370, "Corner size:", &P::FilterCornerSize, {1, 512}),
    Slider(371, "Edge size:", &P::FilterCornerEdge, {0, 20}),
    Slider(372, "Edge density:", &P::FilterCornerDense, {1, 255}),
    CheckBox(373, "Alpha", &P::FilterCornerAlpha),
};
extern constexpr Filter kCorners = MakeFilter<kPage>(nullptr);

} // namespace lmf
