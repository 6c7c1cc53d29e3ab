#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(230, "Wide aperture", &FilterParameters::FilterAverageWide),
};
extern constexpr FilterSlots kAverage = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
