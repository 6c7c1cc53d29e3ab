#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(240, "Type:", &FilterParameters::FilterBayerType, {0, 2}),
};
extern constexpr FilterSlots kBayerDither = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
