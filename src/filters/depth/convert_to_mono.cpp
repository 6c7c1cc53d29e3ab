#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(360, "Dither", &FilterParameters::FilterConvertToMonoDither),
    Slider(361, "Threshold:", &FilterParameters::FilterConvertToMonoThreshold, {1, 254}),
};
extern constexpr FilterSlots kConvertToMono = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
