#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(662, "Brightness:", &FilterParameters::FilterPlasticBrightness, {96, 240}),
    Slider(664, "Border:", &FilterParameters::FilterPlasticBorder, {0, 16}),
    Slider(663, "Edge:", &FilterParameters::FilterPlasticEdge, {10, 40}),
    Slider(661, "Size:", &FilterParameters::FilterPlasticSize, {150, 800}),
    Slider(660, "Start:", &FilterParameters::FilterPlasticStart, {20, 80}),
};
extern constexpr FilterSlots kPlastic = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
