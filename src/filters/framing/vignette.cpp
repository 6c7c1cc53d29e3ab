// Vignette: fades the picture into the paper colour outside an ellipse, as in old portraits.
// Fade is the width of the soft edge, in percent of half the larger side, and Offset how far the ellipse stays from the
// picture's edges, in percent of the smaller side.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1010, "Fade:", &P::FilterVignetteLevel, {1, 50}),
    Slider(1011, "Offset:", &P::FilterVignetteOffsetLevel, {0, 25}),
};
extern constexpr Filter kVignette = MakeFilter<kPage>(nullptr);

} // namespace lmf
