#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(282, "Brightness:", &FilterParameters::FilterTextureBri, {1, 254}).Restores(128),
    Slider(281, "Contrast:", &FilterParameters::FilterTextureCont, {1, 254}),
    Slider(280, "Canvas:", &FilterParameters::FilterTextureMode, {0, 15}),
};
extern constexpr FilterSlots kCanvas = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
