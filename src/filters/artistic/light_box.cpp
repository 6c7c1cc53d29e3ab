#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(561, "Screen type:", &FilterParameters::FilterLightboxScreen, {0, 0}),
    Slider(560, "Screen size:", &FilterParameters::FilterLightboxSize, {4, 64}),
};
extern constexpr FilterSlots kLightBox = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
