#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(910, "Mode:", &FilterParameters::FilterSplitMode, {0, 10}),
    Slider(912, "Black rmvl:", &FilterParameters::FilterSplitRemove, {0, 100}),
    CheckBox(911, "Tint", &FilterParameters::FilterSplitTint),
};
extern constexpr FilterSlots kSplitChannels = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
