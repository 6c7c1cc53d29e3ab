// Raise: turns the picture's edge into a bevel that seems raised or sunken.
// Size is the width of the bevel, in percent of the picture's smaller side. Raise on lights the top and left, off the
// bottom and right.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(710, "Size:", &FilterParameters::FilterRaiseSize, {1, 49}),
    CheckBox(711, "Raise", &FilterParameters::FilterRaiseRaise),
};
extern constexpr FilterSlots kRaise = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
