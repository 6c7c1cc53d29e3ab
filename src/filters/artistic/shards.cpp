// Shards: throws many small shapes over the picture, each in the colour of the pixel that it lands on.
// Density says how many there are, Size how large they are in pixels, Type which shape. The same Random seed throws
// them to the same places again.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1130, "Density:", &P::FilterShardsDensity, {5, 100}),
    Slider(1131, "Size:", &P::FilterShardsSize, {5, 50}),
    NumberEdit(1132, "Random seed:", &P::FilterShardsSeed, {1000, 32760}),
    Combo(1133, "Type:", &P::FilterShardsMode, "Line;Triangle;Diamond;Square;Pentagram;Hexagram;"),
};
extern constexpr Filter kShards = MakeFilter<kPage>(nullptr);

} // namespace lmf
