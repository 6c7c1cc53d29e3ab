#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(200, "Opacity:", &FilterParameters::FilterAddAlphaOpacity, {0, 255}),
    CheckBox(201, "Use mask on clipboard", &FilterParameters::FilterAddAlphaUseCBD),
};
extern constexpr FilterSlots kAddAlpha = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
