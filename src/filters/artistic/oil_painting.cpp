// Oil Painting: each pixel becomes the pixel whose luminance is the most frequent one around it, which joins the
// picture into patches like strokes of a brush. Radius is that of the brush, in pixels.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(640, "Radius:", &P::FilterOilpaintRadius, {100, 400}),
};
extern constexpr Filter kOilPainting = MakeFilter<kPage>(nullptr);

} // namespace lmf
