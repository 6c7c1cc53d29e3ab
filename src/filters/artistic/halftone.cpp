// Halftone: a printer's screen in black and white. Each cell shows a shape whose area follows the darkness of the
// picture there. Screen size is the side of a cell in pixels, Screen type the shape.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(510, "Screen size:", &P::FilterHalftoneSize, {4, 64}),
    Combo(511, "Screen type:", &P::FilterHalftoneScreen, "Ellipse;Horizontal raster;Vertical raster;Cube;Diamond"),
};
extern constexpr Filter kHalftone = MakeFilter<kPage>(nullptr);

} // namespace lmf
