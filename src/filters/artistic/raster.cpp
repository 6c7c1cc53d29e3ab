// Raster: the picture as an engraving of parallel lines, wide where it is dark.
// Density is the tone that the lines give at their widest, Size their distance in pixels, Angle their direction in
// degrees.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(720, "Density:", &P::FilterRasterDensity, {1, 255}),
    Slider(721, "Size:", &P::FilterRasterSize, {1, 64}),
    NumberEdit(722, "Angle:", &P::FilterRasterAngle, {0, 359}),
};
extern constexpr Filter kRaster = MakeFilter<kPage>(nullptr);

} // namespace lmf
