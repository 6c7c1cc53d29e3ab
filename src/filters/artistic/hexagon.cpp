#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(1151, "Show lines", &FilterParameters::FilterHexagonLineEnable),
    Slider(1152, "Line size:", &FilterParameters::FilterHexagonLineSize, {1, 25}),
    Slider(1150, "Tile size:", &FilterParameters::FilterHexagonSize, {8, 100}),
};
extern constexpr FilterSlots kHexagon = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
