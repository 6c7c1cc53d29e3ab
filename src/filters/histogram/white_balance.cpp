#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(1060, "Use paper", &FilterParameters::FilterWhiteBalancePaper),
};
extern constexpr FilterSlots kWhiteBalance = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
