#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(1000, "Amount:", &FilterParameters::FilterUnsharpAmount, {0, 50}),
    HundredthsSlider(1003, "Radius:", &FilterParameters::FilterUnsharpRadius, {10, 990}),
    HundredthsSlider(1002, "Depth:", &FilterParameters::FilterUnsharpSigma, {10, 100}),
    HundredthsSlider(1001, "Threshold:", &FilterParameters::FilterUnsharpThreshold, {1, 15}),
};
extern constexpr FilterSlots kUnsharpMask = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
