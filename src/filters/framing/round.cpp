// Round: a soft bevel along the picture's edge, made of rings whose tone fades inwards.
// Bevel size is its width in pixels. Raised on lightens the left and top and darkens the right and bottom; off is the
// reverse.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(810, "Bevel size:", &FilterParameters::FilterRoundBevelsize, {2, 50}),
    CheckBox(811, "Raised", &FilterParameters::FilterRoundRaised),
};
extern constexpr FilterSlots kRound = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
