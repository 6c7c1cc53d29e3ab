#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kWaves = MakeSlots(UnavailableKernel);

} // namespace lmf
