#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(792, "Amplitude:", &FilterParameters::FilterWaterAmplitude, {70, 8000}),
    OffsetSlider(790, "Center X:", &FilterParameters::FilterWaterCenterX, {0, 200}, 100),
    OffsetSlider(791, "Center Y:", &FilterParameters::FilterWaterCenterY, {0, 200}, 100),
    CheckBox(796, "Dissipate", &FilterParameters::FilterWaterDissipate),
    Slider(795, "Energy:", &FilterParameters::FilterWaterEnergy, {1, 100}),
    Slider(794, "Phase:", &FilterParameters::FilterWaterPhase, {0, 360}),
    HundredthsSlider(793, "Wavelgth:", &FilterParameters::FilterWaterWavelength, {400, 5000}),
};
extern constexpr FilterSlots kRipple = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
