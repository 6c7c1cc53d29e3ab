#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1010, "Fade:", &FilterParameters::FilterVignetteLevel, {1, 50}),
    Slider(1011, "Offset:", &FilterParameters::FilterVignetteOffsetLevel, {0, 25}),
};
extern constexpr FilterSlots kVignette = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
