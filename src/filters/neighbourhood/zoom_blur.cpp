#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1081, "Cycles:", &FilterParameters::FilterZoomBlurCycles, {4, 40}),
    HundredthsSlider(1080, "Displacement:", &FilterParameters::FilterZoomBlurDisp, {100, 1000}),
};
extern constexpr FilterSlots kZoomBlur = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
