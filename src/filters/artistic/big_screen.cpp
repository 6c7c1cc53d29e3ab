#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(250, "Size:", &FilterParameters::FilterBigscreenSize, {10, 96}),
};
extern constexpr FilterSlots kBigScreen = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
