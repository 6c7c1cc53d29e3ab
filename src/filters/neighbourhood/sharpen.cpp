#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(871, "Depth:", &FilterParameters::FilterSharpenSigma, {15, 50}),
    Slider(870, "Radius:", &FilterParameters::FilterSharpenWidth, {3, 15}),
};
extern constexpr FilterSlots kSharpen = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
