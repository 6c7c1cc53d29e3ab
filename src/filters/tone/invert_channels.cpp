#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1202, "Blue:", &FilterParameters::FilterInvertChannelsBlue, {0, 255}),
    Slider(1201, "Green:", &FilterParameters::FilterInvertChannelsGreen, {0, 255}),
    Slider(1200, "Red:", &FilterParameters::FilterInvertChannelsRed, {0, 255}),
};
extern constexpr FilterSlots kInvertChannels = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
