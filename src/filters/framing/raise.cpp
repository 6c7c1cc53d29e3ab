#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(711, "Raise", &FilterParameters::FilterRaiseRaise),
    Slider(710, "Size:", &FilterParameters::FilterRaiseSize, {1, 49}),
};
extern constexpr FilterSlots kRaise = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
