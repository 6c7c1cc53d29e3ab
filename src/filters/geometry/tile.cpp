#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(961, "Depth:", &FilterParameters::FilterTileDeep, {16, 10000}),
    CheckBox(962, "Integral size", &FilterParameters::FilterTileIntegral),
    Slider(960, "Width:", &FilterParameters::FilterTileWide, {16, 10000}),
};
extern constexpr FilterSlots kTile = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
