// Big Screen: a video wall seen from near. Each cell becomes a soft round lamp in the cell's average colour, on the
// paper colour. Size is the distance of the lamps in pixels.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(250, "Size:", &P::FilterBigscreenSize, {10, 96}),
};
extern constexpr Filter kBigScreen = MakeFilter<kPage>(nullptr);

} // namespace lmf
