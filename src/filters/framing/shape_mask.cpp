// Shape mask: keeps what lies inside a shape and gives the rest to the paper colour.
// Shape is its outline, Size its size in percent of the picture, Horizontal and Vertical its place in percent. Opacity
// is how much of the rest is covered. A line of Line size pixels runs along the outline, 0 for none. With Alpha on, the
// shape also goes into the second picture as transparency.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(860, "Size:", &P::FilterShapeMaskSize, {1, 100}),
    Slider(861, "Horizontal:", &P::FilterShapeMaskHorz, {0, 100}),
    Slider(862, "Vertical:", &P::FilterShapeMaskVert, {0, 100}),
    Slider(863, "Opacity:", &P::FilterShapeMaskOpacity, {0, 255}),
    Slider(864, "Line size:", &P::FilterShapeMaskLineSize, {0, 32}),
    Combo(865, "Shape:", &P::FilterShapeMaskShape, "Ellipse;Rectangle;Rounded rectangle;Triangle;Diamond;Hexagon"),
    ColorButton(866, "Line", &P::FilterShapeMaskLineColor),
    CheckBox(867, "Alpha", &P::FilterShapeMaskAlpha),
};
extern constexpr Filter kShapeMask = MakeFilter<kPage>(nullptr);

} // namespace lmf
