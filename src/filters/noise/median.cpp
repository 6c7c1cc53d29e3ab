#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(580, "Radius:", &FilterParameters::FilterMedianRadius, {100, 300}),
};
extern constexpr FilterSlots kMedian = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
