// Jigsaw: adds the relief of a cut jigsaw puzzle to the picture, which is brighter or darker where the relief is.
// Size is that of the puzzle's pieces and Depth the strength of the relief, both in percent.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(540, "Size:", &P::FilterJigsawSize, {10, 100}),
    Slider(541, "Depth:", &P::FilterJigsawDepth, {10, 100}),
};
extern constexpr Filter kJigsaw = MakeFilter<kPage>(nullptr);

} // namespace lmf
