#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(212, "Colored noise", &FilterParameters::FilterNoiseColour),
    Slider(210, "Intensity:", &FilterParameters::FilterNoiseLevel, {1, 32}),
    Slider(211, "Type:", &FilterParameters::FilterNoiseType, {0, 4}),
};
extern constexpr FilterSlots kAddNoise = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
