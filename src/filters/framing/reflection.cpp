// Reflection: shows the picture mirrored below itself, as on a polished table.
// Size is the height of the reflection and Portion the part of the picture that is mirrored, both in percent;
// Displacement is the gap between the two. Brightness, Contrast and Saturation change the reflection, Transparency
// mixes it with the paper colour, and with Gradient on that mixing runs from Gradient start to Gradient end. Tolerance
// is how far a colour may be from the paper colour to count as background of the picture.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(750, "Brightness:", &FilterParameters::FilterReflectionBrt, {0, 255}),
    Slider(751, "Contrast:", &FilterParameters::FilterReflectionCont, {0, 255}),
    Slider(752, "Displacement:", &FilterParameters::FilterReflectionDisp, {0, 100}),
    Slider(753, "Gradient end:", &FilterParameters::FilterReflectionGEnd, {0, 100}),
    Combo(754, "Gradient:", &FilterParameters::FilterReflectionGrad, "Off;On"),
    Slider(755, "Gradient start:", &FilterParameters::FilterReflectionGStart, {0, 100}),
    Slider(756, "Portion:", &FilterParameters::FilterReflectionPort, {1, 100}),
    Slider(757, "Saturation:", &FilterParameters::FilterReflectionSat, {0, 200}),
    Slider(758, "Size:", &FilterParameters::FilterReflectionSize, {1, 100}),
    Slider(759, "Tolerance:", &FilterParameters::FilterReflectionTol, {0, 255}),
    Slider(760, "Transparency:", &FilterParameters::FilterReflectionTrans, {0, 100}),
};
extern constexpr FilterSlots kReflection = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
