#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kRemoveAlpha = MakeSlots(UnavailableKernel);

} // namespace lmf
