// Glass Block: a wall of glass bricks, each of which shows its part of the picture twice in each direction at half
// size. Block size is the side of a brick in pixels; an odd size counts as the next even one.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(500, "Block size:", &FilterParameters::FilterGlassBlockX, {8, 128}),
};
extern constexpr FilterSlots kGlassBlock = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
