#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kNeon = MakeSlots(UnavailableKernel);

} // namespace lmf
