// Convert to RGB: a 24-bit picture of the colours that the pixels have in the picture's palette. There are no settings.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

DibHandle ConvertToRgbKernel(const ReadView &source, FilterContext &) {
    return ExpandToRgb(source);
}

} // namespace

extern constexpr Filter kConvertToRGB = MakeFilter(ConvertToRgbKernel);

} // namespace lmf
