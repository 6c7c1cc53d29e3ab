#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(950, "Angle:", &FilterParameters::FilterSwirlDegrees, {0, 2880}, 1440).Restores(2925),
};
extern constexpr FilterSlots kSwirl = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
