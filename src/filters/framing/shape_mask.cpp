// Shape mask: keeps what lies inside a shape and gives the rest to the paper colour.
// Shape is its outline, Size its size in percent of the picture, Horizontal and Vertical its place in percent. Opacity
// is how much of the rest is covered. A line of Line size pixels runs along the outline, 0 for none. With Alpha on, the
// shape also goes into the second picture as transparency.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(860, "Size:", &FilterParameters::FilterShapeMaskSize, {1, 100}),
    Slider(861, "Horizontal:", &FilterParameters::FilterShapeMaskHorz, {0, 100}),
    Slider(862, "Vertical:", &FilterParameters::FilterShapeMaskVert, {0, 100}),
    Slider(863, "Opacity:", &FilterParameters::FilterShapeMaskOpacity, {0, 255}),
    Slider(864, "Line size:", &FilterParameters::FilterShapeMaskLineSize, {0, 32}),
    Combo(865, "Shape:", &FilterParameters::FilterShapeMaskShape,
          "Ellipse;Rectangle;Rounded rectangle;Triangle;Diamond;Hexagon"),
    ColorButton(866, "Line", &FilterParameters::FilterShapeMaskLineColor),
    CheckBox(867, "Alpha", &FilterParameters::FilterShapeMaskAlpha),
};
extern constexpr FilterSlots kShapeMask = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
