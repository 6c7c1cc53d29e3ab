// Bump: relief by a 3 x 3 window of small whole weights whose sum is 1, so that flat areas stay. At the edges the
// missing neighbour is the pixel's own row or column. There are no settings.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

// The weights:  -1 -1  0
//               -1  1  1
//                0  1  1
LMF_MULTIVERSION
static void BumpBytes(uint8_t *__restrict to, const uint8_t *__restrict above, const uint8_t *__restrict here,
                      const uint8_t *__restrict below, ptrdiff_t count, ptrdiff_t channels) {
    for (ptrdiff_t i = 0; i < count; i++) {
        const int32_t sum = -above[i - channels] - above[i] - here[i - channels] + here[i] + here[i + channels] +
                            below[i] + below[i + channels];
        to[i] = ClampByte(sum);
    }
}

/// Pixel (x, y) of the result for any depth and at the edges.
static uint32_t BumpPixel(const ReadView &from, int32_t x, int32_t y) {
    const int32_t left = std::max(x - 1, 0), right = std::min(x + 1, from.width - 1);
    const int32_t up = std::max(y - 1, 0), down = std::min(y + 1, from.height - 1);
    const uint32_t minus[] = {DibGetPixel(from, left, up), DibGetPixel(from, x, up), DibGetPixel(from, left, y)};
    const uint32_t plus[] = {DibGetPixel(from, x, y), DibGetPixel(from, right, y), DibGetPixel(from, x, down),
                             DibGetPixel(from, right, down)};
    uint32_t result = 0;
    for (int32_t shift = 0; shift < 24; shift += 8) {
        int32_t sum = 0;
        for (uint32_t pixel : plus) sum += pixel >> shift & 255;
        for (uint32_t pixel : minus) sum -= pixel >> shift & 255;
        result |= static_cast<uint32_t>(ClampByte(sum)) << shift;
    }
    return result;
}

static void BumpRow(const WriteView &to, const ReadView &from, int32_t y) {
    const ReadView &view = from;
    const bool plainBytes = view.bits == 24 || view.bits == 8;
    if (plainBytes && view.width > 2) {
        const auto channels = static_cast<ptrdiff_t>(view.bits / 8);
        BumpBytes(to.Row(y) + channels, view.Row(std::max(y - 1, 0)) + channels, view.Row(y) + channels,
                  view.Row(std::min(y + 1, view.height - 1)) + channels, (view.width - 2) * channels, channels);
    }
    const int32_t step = plainBytes ? std::max(view.width - 1, 1) : 1;
    for (int32_t x = 0; x < view.width; x += step) DibSetPixel(to, x, y, BumpPixel(from, x, y));
}

static DibHandle BumpKernel(const ReadView &source, FilterContext &) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ImageMode mode = DibClassify(pass.from);
    if (mode == kModeTrueColor || mode == kModeGrey)
        for (int32_t y = 0; y < pass.from.height; y++) BumpRow(pass.to, pass.from, y);
    return pass.Finish();
}

extern constexpr Filter kBump = MakeFilter(BumpKernel);

} // namespace lmf
