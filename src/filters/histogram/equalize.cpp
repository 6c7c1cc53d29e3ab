#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(421, "Highlight:", &FilterParameters::FilterEqualizeHightlight, {0, 255}),
    Slider(420, "Shadow:", &FilterParameters::FilterEqualizeShadow, {0, 255}),
};
extern constexpr FilterSlots kEqualize = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
