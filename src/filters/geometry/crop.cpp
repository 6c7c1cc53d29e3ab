#include "engine/slots.h"

namespace lmf {

extern constexpr FilterSlots kCrop = MakeSlots(UnavailableKernel);

} // namespace lmf
