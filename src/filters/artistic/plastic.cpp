// Plastic: the shine of a curved plastic cover, a bright dome of light that fades upwards over the picture.
// Start is the height that the light reaches, in percent of the picture's height, and Size the width of the dome in
// percent of its width. Brightness is that of the light at its edge, Edge the sharpness of that edge, and Border a
// margin that stays free of the light, in pixels.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(660, "Start:", &P::FilterPlasticStart, {20, 80}),
    Slider(661, "Size:", &P::FilterPlasticSize, {150, 800}),
    Slider(662, "Brightness:", &P::FilterPlasticBrightness, {96, 240}),
    Slider(663, "Edge:", &P::FilterPlasticEdge, {10, 40}),
    Slider(664, "Border:", &P::FilterPlasticBorder, {0, 16}),
};
extern constexpr Filter kPlastic = MakeFilter<kPage>(nullptr);

} // namespace lmf
