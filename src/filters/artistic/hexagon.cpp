// Hexagon: mosaic of six-sided tiles, each in the average colour of what it covers.
// Tile size is the width of a tile in pixels. Show lines draws the joints, Line size pixels wide.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1150, "Tile size:", &P::FilterHexagonSize, {8, 100}),
    Slider(1152, "Line size:", &P::FilterHexagonLineSize, {1, 25}),
    CheckBox(1151, "Show lines", &P::FilterHexagonLineEnable),
};
extern constexpr Filter kHexagon = MakeFilter<kPage>(nullptr);

} // namespace lmf
