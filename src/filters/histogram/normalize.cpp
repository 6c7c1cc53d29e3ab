#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kNormalize = MakeSlots(UnavailableKernel);

} // namespace lmf
