// Fade: lets the picture fade into the paper colour along one edge.
// Edge chooses the edge, Area how far the fading reaches, in percent of the picture's width or height.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Combo(451, "Edge:", &P::FilterFadeEdge, "North;East;South;West"),
    Slider(450, "Area:", &P::FilterFadeArea, {1, 100}),
};
extern constexpr Filter kFade = MakeFilter<kPage>(nullptr);

} // namespace lmf
