// Light Box: the picture as on a slide that lies on a light table, broken into a screen of coloured cells.
// Screen size is the side of a cell in pixels, Screen type the shape that lets the light through.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(560, "Screen size:", &P::FilterLightboxSize, {4, 64}),
    Combo(561, "Screen type:", &P::FilterLightboxScreen, "Ellipse;Horizontal raster;Vertical raster;Cube;Diamond"),
};
extern constexpr Filter kLightBox = MakeFilter<kPage>(nullptr);

} // namespace lmf
