#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(750, "Brightness:", &FilterParameters::FilterReflectionBrt, {0, 255}),
    Slider(751, "Contrast:", &FilterParameters::FilterReflectionCont, {0, 255}),
    Slider(752, "Displacement:", &FilterParameters::FilterReflectionDisp, {0, 100}),
    Slider(753, "Gradient end:", &FilterParameters::FilterReflectionGEnd, {0, 100}),
    Slider(754, "Gradient:", &FilterParameters::FilterReflectionGrad, {0, 1}),
    Slider(755, "Gradient start:", &FilterParameters::FilterReflectionGStart, {0, 100}),
    Slider(756, "Portion:", &FilterParameters::FilterReflectionPort, {1, 100}),
    Slider(757, "Saturation:", &FilterParameters::FilterReflectionSat, {0, 200}),
    Slider(758, "Size:", &FilterParameters::FilterReflectionSize, {1, 100}),
    Slider(759, "Tolerance:", &FilterParameters::FilterReflectionTol, {0, 255}),
    Slider(760, "Transparency:", &FilterParameters::FilterReflectionTrans, {0, 100}),
};
extern constexpr FilterSlots kReflection = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
