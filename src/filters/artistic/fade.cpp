#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(450, "Area:", &FilterParameters::FilterFadeArea, {1, 100}),
    Slider(451, "Edge:", &FilterParameters::FilterFadeEdge, {0, 3}),
};
extern constexpr FilterSlots kFade = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
