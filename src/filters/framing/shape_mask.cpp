#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(867, "Alpha", &FilterParameters::FilterShapeMaskAlpha),
    Slider(861, "Horizontal:", &FilterParameters::FilterShapeMaskHorz, {0, 100}),
    ColorButton(866, "Line", &FilterParameters::FilterShapeMaskLineColor),
    Slider(864, "Line size:", &FilterParameters::FilterShapeMaskLineSize, {0, 32}),
    Slider(863, "Opacity:", &FilterParameters::FilterShapeMaskOpacity, {0, 255}),
    Slider(865, "Shape:", &FilterParameters::FilterShapeMaskShape, {0, 5}),
    Slider(860, "Size:", &FilterParameters::FilterShapeMaskSize, {1, 100}),
    Slider(862, "Vertical:", &FilterParameters::FilterShapeMaskVert, {0, 100}),
};
extern constexpr FilterSlots kShapeMask = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
