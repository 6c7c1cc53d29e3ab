#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(900, "Threshold:", &FilterParameters::FilterSolarizeThreshold, {1, 255}),
};
extern constexpr FilterSlots kSolarize = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
