#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(630, "Level:", &FilterParameters::FilterObscureLevel, {2, 128}),
    Slider(631, "Rule size:", &FilterParameters::FilterObscureRule, {0, 64}),
};
extern constexpr FilterSlots kObscure = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
