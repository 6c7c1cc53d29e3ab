#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1120, "Strength:", &FilterParameters::FilterLensCorrectStr, {0, 4000}),
    Slider(1121, "Zoom:", &FilterParameters::FilterLensCorrectZoom, {0, 100}),
};
extern constexpr FilterSlots kLensCorrection = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
