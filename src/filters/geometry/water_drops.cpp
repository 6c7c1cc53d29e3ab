#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1020, "Aperture:", &FilterParameters::FilterWaterDropsAperture, {3, 12}),
};
extern constexpr FilterSlots kWaterDrops = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
