// Flip: the mirror image, left to right or top to bottom.
#include "engine/slots.h"
#include "image/dib_ops.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    RadioButton(460, "Horizontal", &FilterParameters::FilterFlipDirection, 0, {0, 1}),
    RadioButton(461, "Vertical", &FilterParameters::FilterFlipDirection, 1, {0, 1}),
};

static DibHandle FlipKernel(DibHandle source, FilterContext *context) {
    return context->FilterFlipDirection == 1 ? DibFlipVertical(source) : DibFlipHorizontal(source);
}

extern constexpr FilterSlots kFlip = MakeSlots<kPage>(FlipKernel);

} // namespace lmf
