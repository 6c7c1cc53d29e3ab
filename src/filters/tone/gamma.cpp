#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(480, "Gamma:", &FilterParameters::FilterGammaLevel, {10, 200}),
};
extern constexpr FilterSlots kGamma = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
