#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(373, "Alpha", &FilterParameters::FilterCornerAlpha),
    Slider(372, "Edge density:", &FilterParameters::FilterCornerDense, {1, 255}),
    Slider(371, "Edge size:", &FilterParameters::FilterCornerEdge, {0, 20}),
    Slider(370, "Corner size:", &FilterParameters::FilterCornerSize, {1, 512}),
};
extern constexpr FilterSlots kCorners = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
