// Convert to RGB: a 24-bit picture of the colours that the pixels have in the picture's palette. There are no settings.
#include "engine/slots.h"
#include "image/dib_ops.h"

namespace lmf {

static DibHandle ConvertToRgbKernel(DibHandle source, FilterContext *) {
    return ExpandToRgb(source);
}

extern constexpr FilterSlots kConvertToRGB = MakeSlots(ConvertToRgbKernel);

} // namespace lmf
