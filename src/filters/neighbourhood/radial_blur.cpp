#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(700, "Angle:", &FilterParameters::FilterRadialBlurAngle, {1, 45}),
};
extern constexpr FilterSlots kRadialBlur = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
