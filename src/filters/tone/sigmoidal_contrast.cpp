#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(890, "Contrast:", &FilterParameters::FilterSigcontContrast, {1, 200}),
    Slider(891, "Midpoint:", &FilterParameters::FilterSigcontMidpoint, {1, 100}).Edit(0, 100),
    CheckBox(892, "Brighten", &FilterParameters::FilterSigcontSharpen),
};
extern constexpr FilterSlots kSigmoidalContrast = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
