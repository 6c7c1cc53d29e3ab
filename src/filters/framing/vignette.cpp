// Vignette: fades the picture into the paper colour outside an ellipse, as in old portraits.
// Fade is the width of the soft edge, in percent of half the larger side, and Offset how far the ellipse stays from the
// picture's edges, in percent of the smaller side.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1010, "Fade:", &FilterParameters::FilterVignetteLevel, {1, 50}),
    Slider(1011, "Offset:", &FilterParameters::FilterVignetteOffsetLevel, {0, 25}),
};
extern constexpr FilterSlots kVignette = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
