#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(390, "Fatten", &FilterParameters::FilterEdgeTraceFatten),
};
extern constexpr FilterSlots kEdgeTraceAndFatten = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
