// Lens Flare: a light source in the picture with its glow, its ring and the reflections that it throws on the line
// through the middle of the picture. Center X and Center Y place the light, in percent of the picture's size from its
// middle. Intensity is the size of the whole flare, in percent of the picture's larger side.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(550, "Center X:", &P::FilterLensFlareX, {0, 100}, 50),
    OffsetSlider(551, "Center Y:", &P::FilterLensFlareY, {0, 100}, 50),
    Slider(552, "Intensity:", &P::FilterLensFlareIntensity, {50, 300}),
};
extern constexpr Filter kLensFlare = MakeFilter<kPage>(nullptr);

} // namespace lmf
