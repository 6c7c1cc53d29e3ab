#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(322, "Blue:", &FilterParameters::FilterBlue, {0, 255}),
    Slider(321, "Green:", &FilterParameters::FilterGreen, {0, 255}),
    Slider(323, "Intensity:", &FilterParameters::FilterIntensity, {0, 255}),
    Slider(320, "Red:", &FilterParameters::FilterRed, {0, 255}),
};
extern constexpr FilterSlots kColorAndIntensity = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
