#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1140, "Density:", &FilterParameters::FilterFilmgrainBlur, {0, 40}),
    CheckBox(1143, "Normalize", &FilterParameters::FilterFilmgrainNormalize),
    Slider(1142, "Random seed:", &FilterParameters::FilterFilmgrainSeed, {1000, 32760}),
    Slider(1141, "Impact:", &FilterParameters::FilterFilmgrainStrength, {20, 99}),
};
extern constexpr FilterSlots kFilmGrain = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
