#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(930, "Gutter:", &FilterParameters::FilterStitchGutter, {0, 64}),
    Slider(931, "Mode:", &FilterParameters::FilterStitchMode, {0, 3}),
    CheckBox(932, "Resize", &FilterParameters::FilterStitchResize),
};
extern constexpr FilterSlots kStitch = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
