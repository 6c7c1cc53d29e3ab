#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(640, "Radius:", &FilterParameters::FilterOilpaintRadius, {100, 400}),
};
extern constexpr FilterSlots kOilPainting = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
