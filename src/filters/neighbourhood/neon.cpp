// Neon: glowing edges on black, the strength of the brightness gradient by J. M. S. Prewitt's two windows (1970).
// Pictures of more than 500 pixels across are reduced to that first and enlarged again, which makes the lines soft.
// There are no settings.
#include "filters/neighbourhood/neon.h"

#include <cmath>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/window3x3.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

constexpr int32_t kLargestSide = 500;

/// The gradient down and across, from three pixels on each side.
LMF_MULTIVERSION
void EdgeBytes(uint8_t *__restrict to, const Window3x3 &window, ptrdiff_t count) {
    const uint8_t *__restrict above = window.above, *__restrict here = window.here, *__restrict below = window.below;
    const ptrdiff_t left = window.left, right = window.right;
    for (ptrdiff_t i = 0; i < count; i++) {
        const int32_t down =
            below[i - left] + below[i] + below[i + right] - above[i - left] - above[i] - above[i + right];
        const int32_t across =
            above[i + right] + here[i + right] + below[i + right] - above[i - left] - here[i - left] - below[i - left];
        const double square = down * down + across * across;
        to[i] = ClampByte(static_cast<int32_t>(std::sqrt(square) / 1.8));
    }
}

DibHandle FindEdges(const ReadView &picture) {
    BytePass pass(picture);
    if (!pass) return nullptr;
    ForEachWindow3x3(pass, EdgeBytes);
    return pass.Finish();
}

DibHandle NeonKernel(const ReadView &source, FilterContext &) {
    return Neon(source);
}

} // namespace

DibHandle Neon(const ReadView &source) {
    const int32_t width = source.width, height = source.height;
    const int32_t side = std::max(width, height);
    if (side <= kLargestSide) return FindEdges(source);

    const int32_t percent = kLargestSide * 100 / side;
    const LockedDib reduced(DibScalePercent(source, percent, percent, kWindowAutomatic));
    if (!reduced) return nullptr;
    LockedDib edges(FindEdges(reduced));
    if (!edges) return nullptr;
    DibHandle enlarged = DibScale(edges, width, height, kWindowAutomatic, 1.0);
    return enlarged != nullptr ? enlarged : edges.Release();
}

extern constexpr Filter kNeon = MakeFilter(NeonKernel);

} // namespace lmf
