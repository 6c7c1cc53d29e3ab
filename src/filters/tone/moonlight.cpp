#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(590, "Factor:", &FilterParameters::FilterMoonlightFactor, {1, 100}),
};
extern constexpr FilterSlots kMoonlight = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
