#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(820, "Maintain size", &FilterParameters::FilterSeamlessMaintain),
};
extern constexpr FilterSlots kSeamless = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
