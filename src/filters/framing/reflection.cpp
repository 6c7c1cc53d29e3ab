// Reflection: shows the picture mirrored below itself, as on a polished table.
// Size is the height of the reflection and Portion the part of the picture that is mirrored, both in percent;
// Displacement is the gap between the two. Brightness, Contrast and Saturation change the reflection, Transparency
// mixes it with the paper colour, and with Gradient on that mixing runs from Gradient start to Gradient end. Tolerance
// is how far a colour may be from the paper colour to count as background of the picture.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(750, "Brightness:", &P::FilterReflectionBrt, {0, 255}),
    Slider(751, "Contrast:", &P::FilterReflectionCont, {0, 255}),
    Slider(752, "Displacement:", &P::FilterReflectionDisp, {0, 100}),
    Slider(753, "Gradient end:", &P::FilterReflectionGEnd, {0, 100}),
    Combo(754, "Gradient:", &P::FilterReflectionGrad, "Off;On"),
    Slider(755, "Gradient start:", &P::FilterReflectionGStart, {0, 100}),
    Slider(756, "Portion:", &P::FilterReflectionPort, {1, 100}),
    Slider(757, "Saturation:", &P::FilterReflectionSat, {0, 200}),
    Slider(758, "Size:", &P::FilterReflectionSize, {1, 100}),
    Slider(759, "Tolerance:", &P::FilterReflectionTol, {0, 255}),
    Slider(760, "Transparency:", &P::FilterReflectionTrans, {0, 100}),
};
extern constexpr Filter kReflection = MakeFilter<kPage>(nullptr);

} // namespace lmf
