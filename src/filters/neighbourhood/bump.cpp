#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kBump = MakeSlots(UnavailableKernel);

} // namespace lmf
