#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(460, "Horizontal,Vertical", &FilterParameters::FilterFlipDirection, {0, 1}),
};
extern constexpr FilterSlots kFlip = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
