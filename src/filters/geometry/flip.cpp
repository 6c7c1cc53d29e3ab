// Flip: the mirror image, left to right or top to bottom.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    RadioButton(460, "Horizontal", &P::FilterFlipDirection, 0, {0, 1}),
    RadioButton(461, "Vertical", &P::FilterFlipDirection, 1, {0, 1}),
};

static DibHandle FlipKernel(const ReadView &source, FilterContext &context) {
    return context.FilterFlipDirection == 1 ? DibFlipVertical(source) : DibFlipHorizontal(source);
}

extern constexpr Filter kFlip = MakeFilter<kPage>(FlipKernel);

} // namespace lmf
