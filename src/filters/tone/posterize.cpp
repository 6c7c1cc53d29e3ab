#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(680, "Steps:", &FilterParameters::FilterPosterizeSteps, {1, 8}),
};
extern constexpr FilterSlots kPosterize = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
