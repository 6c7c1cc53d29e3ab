#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kDespeckle = MakeSlots(UnavailableKernel);

} // namespace lmf
