#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(552, "Intensity:", &FilterParameters::FilterLensFlareIntensity, {50, 300}),
    OffsetSlider(550, "Center X:", &FilterParameters::FilterLensFlareX, {0, 100}, 50),
    OffsetSlider(551, "Center Y:", &FilterParameters::FilterLensFlareY, {0, 100}, 50),
};
extern constexpr FilterSlots kLensFlare = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
