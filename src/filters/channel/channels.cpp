#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(310, "Mode:", &FilterParameters::FilterChannelMode, {0, 15}),
};
extern constexpr FilterSlots kChannels = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
