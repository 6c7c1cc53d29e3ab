#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(331, "Brightness:", &FilterParameters::FilterBrightness, {0, 255}),
    Slider(330, "Contrast:", &FilterParameters::FilterContrast, {0, 255}),
};
extern constexpr FilterSlots kContrastAndBrightness = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
