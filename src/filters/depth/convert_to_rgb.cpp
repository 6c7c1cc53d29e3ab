#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kConvertToRGB = MakeSlots(UnavailableKernel);

} // namespace lmf
