#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(491, "Radius:", &FilterParameters::FilterGaussianRadius, {10, 990}),
    HundredthsSlider(490, "Depth:", &FilterParameters::FilterGaussianSigma, {10, 100}),
};
extern constexpr FilterSlots kGaussianBlur = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
