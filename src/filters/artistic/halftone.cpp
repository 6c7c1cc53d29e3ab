// Halftone: a printer's screen in black and white. Each cell shows a shape whose area follows the darkness of the
// picture there. Screen size is the side of a cell in pixels, Screen type the shape.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(510, "Screen size:", &FilterParameters::FilterHalftoneSize, {4, 64}),
    Combo(511, "Screen type:", &FilterParameters::FilterHalftoneScreen,
          "Ellipse;Horizontal raster;Vertical raster;Cube;Diamond"),
};
extern constexpr FilterSlots kHalftone = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
