#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kExplodePage[] = {
    Slider(430, "Amount:", &FilterParameters::FilterExplodeRadius, {1, 100}),
    Slider(431, "Horz. Offset:", &FilterParameters::FilterExplodeXOff, {10, 90}),
    Slider(432, "Vert. Offset:", &FilterParameters::FilterExplodeYOff, {10, 90}),
};
extern constexpr FilterSlots kExplode = MakeSlots<kExplodePage>(UnavailableKernel);

static constexpr PageControl kImplodePage[] = {
    Slider(530, "Amount:", &FilterParameters::FilterImplodeRadius, {1, 100}),
    Slider(531, "Horz. Offset:", &FilterParameters::FilterImplodeXOff, {10, 90}),
    Slider(532, "Vert. Offset:", &FilterParameters::FilterImplodeYOff, {10, 90}),
};
extern constexpr FilterSlots kImplode = MakeSlots<kImplodePage>(UnavailableKernel);

} // namespace lmf
