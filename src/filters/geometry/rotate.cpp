#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(800, "Angle (degrees):", &FilterParameters::FilterRotateAngle, {0, 3599}),
    Slider(801, "", &FilterParameters::FilterRotateDirection, {0, 1}),
    CheckBox(805, "Interpolate", &FilterParameters::FilterRotateInterpolate),
    CheckBox(806, "Preserve size", &FilterParameters::FilterRotatePreserve),
    CheckBox(807, "Maximum quality", &FilterParameters::FilterRotateShear),
};
extern constexpr FilterSlots kRotate = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
