#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(541, "Depth:", &FilterParameters::FilterJigsawDepth, {10, 100}),
    Slider(540, "Size:", &FilterParameters::FilterJigsawSize, {10, 100}),
};
extern constexpr FilterSlots kJigsaw = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
