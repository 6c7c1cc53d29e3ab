// Remove Alpha: lays the picture over the paper colour by its second picture, 255 for opaque, and drops that. Where
// the second picture is smaller, the picture counts as opaque. There are no settings.
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

/// How much of the paper shows through each pixel of a row: none behind the end of `alpha`.
void ReadClearness(uint8_t *__restrict clear, const ReadView &alpha, int32_t y, int32_t width) {
    const int32_t inside = alpha.bits == 8 && y < alpha.height ? std::min(width, alpha.width) : 0;
    const uint8_t *__restrict row = inside > 0 ? alpha.Row(y) : nullptr;
    for (int32_t x = 0; x < inside; x++) clear[x] = static_cast<uint8_t>(255 - row[x]);
    for (int32_t x = inside; x < width; x++) clear[x] = static_cast<uint8_t>(255 - DibGetPixel(alpha, x, y));
}

DibHandle RemoveAlphaKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source, 24, nullptr);
    const DibReadLock alpha(context.second);
    const auto width = static_cast<uint64_t>(source.width);
    BlockArray<uint8_t> bgr(width * 3), clear(width);
    if (!pass || !alpha || !bgr || !clear) return nullptr;
    for (int32_t y = 0; y < source.height; y++) {
        ReadBgrRow(bgr.data, source, y);
        ReadClearness(clear.data, alpha.view, y, source.width);
        TintRow(pass.to.Row(y), bgr.data, clear.data, source.width, context.paperColor);
    }
    ReplaceSecond(context, nullptr);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kRemoveAlpha = MakeFilter(RemoveAlphaKernel);

} // namespace lmf
