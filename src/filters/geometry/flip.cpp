// Flip: the mirror image, left to right or top to bottom.
#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    RadioButton(460, "Horizontal", &P::FilterFlipDirection, 0, {0, 1}).Help("Swaps left and right."),
    RadioButton(461, "Vertical", &P::FilterFlipDirection, 1, {0, 1}).Help("Swaps top and bottom."),
};

DibHandle FlipKernel(const ReadView &source, FilterContext &context) {
    return context.FilterFlipDirection == 1 ? DibFlipVertical(source) : DibFlipHorizontal(source);
}

} // namespace

extern constexpr Filter kFlip = MakeFilter<kPage>(FlipKernel);

} // namespace lmf
