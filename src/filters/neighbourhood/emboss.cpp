#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(401, "Depth:", &FilterParameters::FilterEmbossSigma, {15, 50}),
    Slider(400, "Radius:", &FilterParameters::FilterEmbossWidth, {4, 15}),
};
extern constexpr FilterSlots kEmboss = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
