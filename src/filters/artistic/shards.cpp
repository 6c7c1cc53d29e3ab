#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1130, "Density:", &FilterParameters::FilterShardsDensity, {5, 100}),
    Slider(1131, "Size:", &FilterParameters::FilterShardsSize, {5, 50}),
    Slider(1132, "Random seed:", &FilterParameters::FilterShardsSeed, {1000, 32760}),
    Slider(1133, "Type:", &FilterParameters::FilterShardsMode, {0, 5}),
};
extern constexpr FilterSlots kShards = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
