// Raster: the picture as an engraving of parallel lines, wide where it is dark.
// Density is the tone that the lines give at their widest, Size their distance in pixels, Angle their direction in
// degrees.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(720, "Density:", &FilterParameters::FilterRasterDensity, {1, 255}),
    Slider(721, "Size:", &FilterParameters::FilterRasterSize, {1, 64}),
    NumberEdit(722, "Angle:", &FilterParameters::FilterRasterAngle, {0, 359}),
};
extern constexpr FilterSlots kRaster = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
