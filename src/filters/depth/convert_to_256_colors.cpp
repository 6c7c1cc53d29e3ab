#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(340, "Dither", &FilterParameters::FilterConvertTo256Dither),
};
extern constexpr FilterSlots kConvertTo256Colors = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
