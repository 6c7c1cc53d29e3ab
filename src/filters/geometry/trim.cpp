#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(995, "East", &FilterParameters::FilterTrimEast),
    Slider(992, "Percent:", &FilterParameters::FilterTrimPercent, {1, 50}),
    Slider(993, "Trim mode:", &FilterParameters::FilterTrimMode, {0, 0}),
    CheckBox(994, "North", &FilterParameters::FilterTrimNorth),
    Slider(991, "Size:", &FilterParameters::FilterTrimSize, {1, 1024}),
    CheckBox(996, "South", &FilterParameters::FilterTrimSouth),
    Slider(990, "Tolerance:", &FilterParameters::FilterTrimTol, {0, 255}),
    CheckBox(997, "West", &FilterParameters::FilterTrimWest),
};
extern constexpr FilterSlots kTrim = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
