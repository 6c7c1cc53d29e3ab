#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(810, "Bevel size:", &FilterParameters::FilterRoundBevelsize, {2, 50}),
    CheckBox(811, "Raised", &FilterParameters::FilterRoundRaised),
};
extern constexpr FilterSlots kRound = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
