#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(410, "Level:", &FilterParameters::FilterEdgeEnhanceLevel, {0, 2}),
};
extern constexpr FilterSlots kEdgeEnhancement = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
