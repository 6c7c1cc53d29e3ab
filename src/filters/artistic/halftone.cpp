#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(511, "Screen type:", &FilterParameters::FilterHalftoneScreen, {0, 4}),
    Slider(510, "Screen size:", &FilterParameters::FilterHalftoneSize, {4, 64}),
};
extern constexpr FilterSlots kHalftone = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
