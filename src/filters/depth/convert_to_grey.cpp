// Convert to Grey: an 8-bit picture of the luminance of true colour; a picture with a palette becomes the red parts of
// its entries. There are no settings.
#include "engine/slots.h"
#include "image/dib_ops.h"

namespace lmf {

static DibHandle ConvertToGreyKernel(DibHandle source, FilterContext *) {
    return DibToGrey(source);
}

extern constexpr FilterSlots kConvertToGrey = MakeSlots(ConvertToGreyKernel);

} // namespace lmf
