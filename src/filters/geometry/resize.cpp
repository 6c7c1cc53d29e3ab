#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(776, "By dimensions", &FilterParameters::FilterResizeByDim),
    Slider(778, "Depth:", &FilterParameters::FilterResizeDepth, {8, 32000}).Restores(800),
    Slider(770, "Horizontal:", &FilterParameters::FilterResizeHorz, {5, 5000}),
    CheckBox(775, "Interpolate", &FilterParameters::FilterResizeInterpolate),
    CheckBox(774, "Constant", &FilterParameters::FilterResizeConstant),
    Slider(779, "Filter:", &FilterParameters::FilterResizeFilter, {0, 15}),
    Slider(771, "Vertical:", &FilterParameters::FilterResizeVert, {5, 5000}),
    Slider(777, "Width:", &FilterParameters::FilterResizeWidth, {8, 32000}),
};
extern constexpr FilterSlots kResize = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
