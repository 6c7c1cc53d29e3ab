// Hexagon: mosaic of six-sided tiles, each in the average colour of what it covers.
// Tile size is the width of a tile in pixels. Show lines draws the joints, Line size pixels wide.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1150, "Tile size:", &FilterParameters::FilterHexagonSize, {8, 100}),
    Slider(1152, "Line size:", &FilterParameters::FilterHexagonLineSize, {1, 25}),
    CheckBox(1151, "Show lines", &FilterParameters::FilterHexagonLineEnable),
};
extern constexpr FilterSlots kHexagon = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
