// Big Screen: a video wall seen from near. Each cell becomes a soft round lamp in the cell's average colour, on the
// paper colour. Size is the distance of the lamps in pixels.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(250, "Size:", &FilterParameters::FilterBigscreenSize, {10, 96}),
};
extern constexpr FilterSlots kBigScreen = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
