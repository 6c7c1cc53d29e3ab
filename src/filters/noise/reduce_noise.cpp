#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(740, "Radius:", &FilterParameters::Filter_ReduceNoiseRadius, {2, 50}),
};
extern constexpr FilterSlots kReduceNoise = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
