// Corners: rounds off the picture's corners, as those of an old print.
// Corner size is the radius in pixels. Edge size is the width of a darker rim along the rounded outline, 0 for none,
// and Edge density its strength. With Alpha on, the outline also goes into the second picture as transparency.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(370, "Corner size:", &FilterParameters::FilterCornerSize, {1, 512}),
    Slider(371, "Edge size:", &FilterParameters::FilterCornerEdge, {0, 20}),
    Slider(372, "Edge density:", &FilterParameters::FilterCornerDense, {1, 255}),
    CheckBox(373, "Alpha", &FilterParameters::FilterCornerAlpha),
};
extern constexpr FilterSlots kCorners = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
