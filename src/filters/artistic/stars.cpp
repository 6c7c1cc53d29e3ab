#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(922, "Angle:", &FilterParameters::FilterStarAngle, {0, 359}),
    CheckBox(925, "Auto-line", &FilterParameters::FilterStarAutoline),
    Slider(923, "Brightness:", &FilterParameters::FilterStarBrightness, {1, 5}),
    Slider(920, "Cell size:", &FilterParameters::FilterStarCellsize, {2, 50}),
    CheckBox(926, "High resolution", &FilterParameters::FilterStarHighres),
    Slider(924, "Line size:", &FilterParameters::FilterStarLinesize, {1, 16}),
    CheckBox(927, "Rotate matrix", &FilterParameters::FilterStarRotmatrix),
    Slider(921, "Threshold:", &FilterParameters::FilterStarThreshold, {8, 248}),
};
extern constexpr FilterSlots kStars = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
