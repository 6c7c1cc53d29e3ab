#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kBlackThresholdPage[] = {
    CheckBox(261, "Antialias", &FilterParameters::FilterBlackAntialias),
    Slider(260, "Threshold:", &FilterParameters::FilterBlackThresholdLevel, {24, 160}),
};
extern constexpr FilterSlots kBlackThreshold = MakeSlots<kBlackThresholdPage>(UnavailableKernel);

static constexpr PageControl kWhiteThresholdPage[] = {
    CheckBox(1071, "Antialias", &FilterParameters::FilterWhiteAntiAlias),
    Slider(1070, "Threshold:", &FilterParameters::FilterWhiteThresholdLevel, {64, 250}),
};
extern constexpr FilterSlots kWhiteThreshold = MakeSlots<kWhiteThresholdPage>(UnavailableKernel);

} // namespace lmf
