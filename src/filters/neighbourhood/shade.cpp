#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(840, "Azimuth:", &FilterParameters::FilterShadeAzimuth, {0, 359}),
    Slider(841, "Elevation:", &FilterParameters::FilterShadeElevation, {1, 90}),
    CheckBox(842, "Colored shade", &FilterParameters::FilterShadeLevel),
};
extern constexpr FilterSlots kShade = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
