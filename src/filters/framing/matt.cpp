#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(573, "Absolute", &FilterParameters::FilterMattAbsolute),
    Slider(570, "Size:", &FilterParameters::FilterMattSize, {1, 100}),
    Slider(571, "Horz. offset:", &FilterParameters::FilterMattXOffset, {0, 200}),
    Slider(572, "Vert. offset:", &FilterParameters::FilterMattYOffset, {0, 200}),
};
extern constexpr FilterSlots kMatt = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
