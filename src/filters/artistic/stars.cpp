// Stars: puts a star of light on each bright spot, as a cross screen before a lens does.
// Cell size is the grid in which a spot is looked for, in pixels, and Threshold the tone from which a spot counts.
// Angle turns the rays, in degrees; Brightness sets their strength and Line size their width in pixels. Auto-line lets
// the width follow the brightness of the spot, High resolution draws the rays smoothly, and Rotate matrix turns the
// grid with them.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(920, "Cell size:", &P::FilterStarCellsize, {2, 50}),
    Slider(921, "Threshold:", &P::FilterStarThreshold, {8, 248}),
    Slider(922, "Angle:", &P::FilterStarAngle, {0, 359}),
    Slider(923, "Brightness:", &P::FilterStarBrightness, {1, 5}),
    Slider(924, "Line size:", &P::FilterStarLinesize, {1, 16}),
    CheckBox(925, "Auto-line", &P::FilterStarAutoline),
    CheckBox(926, "High resolution", &P::FilterStarHighres),
    CheckBox(927, "Rotate matrix", &P::FilterStarRotmatrix),
};
extern constexpr Filter kStars = MakeFilter<kPage>(nullptr);

} // namespace lmf
