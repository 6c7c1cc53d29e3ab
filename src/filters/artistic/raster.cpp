#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(722, "Angle:", &FilterParameters::FilterRasterAngle, {0, 359}),
    Slider(720, "Density:", &FilterParameters::FilterRasterDensity, {1, 255}),
    Slider(721, "Size:", &FilterParameters::FilterRasterSize, {1, 64}),
};
extern constexpr FilterSlots kRaster = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
