#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(500, "Block size:", &FilterParameters::FilterGlassBlockX, {8, 128}),
};
extern constexpr FilterSlots kGlassBlock = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
