// Convert to Grey: an 8-bit picture of the luminance of true colour; a picture with a palette becomes the red parts of
// its entries. There are no settings.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

DibHandle ConvertToGreyKernel(const ReadView &source, FilterContext &) {
    return DibToGrey(source);
}

} // namespace

extern constexpr Filter kConvertToGrey = MakeFilter(ConvertToGreyKernel);

} // namespace lmf
