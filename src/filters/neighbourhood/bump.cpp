// Bump: relief by a 3 x 3 window of small whole weights whose sum is 1, so that flat areas stay. At the edges the
// missing neighbour is the pixel's own row or column. There are no settings.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/window3x3.h"

namespace lmf {

namespace {

// The weights:  -1 -1  0
//               -1  1  1
//                0  1  1
LMF_MULTIVERSION
void BumpBytes(uint8_t *__restrict to, const Window3x3 &window, ptrdiff_t count) {
    const uint8_t *__restrict above = window.above, *__restrict here = window.here, *__restrict below = window.below;
    const ptrdiff_t left = window.left, right = window.right;
    for (ptrdiff_t i = 0; i < count; i++)
        to[i] = ClampByte(-above[i - left] - above[i] - here[i - left] + here[i] + here[i + right] + below[i] +
                          below[i + right]);
}

DibHandle BumpKernel(const ReadView &source, FilterContext &) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const ImageMode mode = DibClassify(source);
    if (mode == kModeTrueColor || mode == kModeGrey) ForEachWindow3x3(pass, BumpBytes);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kBump = MakeFilter(BumpKernel);

} // namespace lmf
