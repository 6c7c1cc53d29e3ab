#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(470, "Bevel:", &FilterParameters::FilterFrameBevel, {2, 48}),
    Slider(471, "Matte:", &FilterParameters::FilterFrameMatte, {2, 128}),
};
extern constexpr FilterSlots kFrame = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
