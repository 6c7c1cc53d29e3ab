#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(880, "Horizontal:", &FilterParameters::FilterShearDegreeX, {0, 60}, 30),
    OffsetSlider(881, "Vertical:", &FilterParameters::FilterShearDegreeY, {0, 60}, 30),
};
extern constexpr FilterSlots kShear = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
