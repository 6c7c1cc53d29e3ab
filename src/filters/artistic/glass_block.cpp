// Glass Block: a wall of glass bricks, each of which shows its part of the picture twice in each direction at half
// size. Block size is the side of a brick in pixels; an odd size counts as the next even one.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(500, "Block size:", &P::FilterGlassBlockX, {8, 128}),
};
extern constexpr Filter kGlassBlock = MakeFilter<kPage>(nullptr);

} // namespace lmf
