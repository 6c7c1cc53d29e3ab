#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(600, "Angle:", &FilterParameters::FilterMotionBlurAngle, {0, 359}),
    Slider(602, "Radius:", &FilterParameters::FilterMotionBlurRadius, {5, 300}),
    Slider(601, "Depth:", &FilterParameters::FilterMotionBlurSigma, {5, 50}),
};
extern constexpr FilterSlots kMotionBlur = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
