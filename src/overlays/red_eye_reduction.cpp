#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(730, "Threshold:", &FilterParameters::FilterRRedeyeThreshold, {250, 2250}),
};
extern constexpr FilterSlots kRedEyeReduction = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
