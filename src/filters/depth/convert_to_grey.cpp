#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kConvertToGrey = MakeSlots(UnavailableKernel);

} // namespace lmf
