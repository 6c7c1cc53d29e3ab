// Glass Block: a wall of glass bricks, each of which shows its part of the picture twice in each direction at half
// size. Block size is the side of a brick in pixels; an odd size counts as the next even one.
#include <cstring>

#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(500, "Block size:", &P::FilterGlassBlockX, {8, 128})
        .In(Unit::Pixels)
        .Help("Makes each brick of glass this wide and high; an odd size counts as the next even one."),
};

/// Where a row or column of bricks finds what it shows.
struct Bricks {
    int32_t size; ///< even

    /// Every other position of the brick that holds this one, twice over. It may lie beyond the picture's end.
    int32_t Seen(int32_t position) const {
        const int32_t inside = position % size;
        return position - inside + inside % (size / 2) * 2;
    }
};

/// Bytes of pixels with nothing between them.
template <size_t kBytes>
struct Pixel {
    uint8_t bytes[kBytes];
};

/// Writes what each brick shows of a row: its first half by picking pixels, its second half by copying the first.
template <size_t kBytes>
void ShowRow(uint8_t *toBytes, const uint8_t *fromBytes, int32_t width, Bricks bricks) {
    auto *to = reinterpret_cast<Pixel<kBytes> *>(toBytes);
    const auto *from = reinterpret_cast<const Pixel<kBytes> *>(fromBytes);
    const int32_t half = bricks.size / 2;
    int32_t x = 0;
    for (; x + bricks.size <= width; x += bricks.size) {
        for (int32_t i = 0; i < half; i++) to[x + i] = from[x + 2 * i];
        std::memcpy(to + x + half, to + x, static_cast<size_t>(half) * kBytes);
    }
    // Columns beyond the last one stay where they are.
    for (; x < width; x++) to[x] = from[bricks.Seen(x) < width ? bricks.Seen(x) : x];
}

DibHandle GlassBlockKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const Bricks bricks{context.FilterGlassBlockX + context.FilterGlassBlockX % 2};
    for (int32_t y = 0; y < from.height; y++) {
        // Rows beyond the last one show that one.
        const int32_t seen = std::min(bricks.Seen(y), from.height - 1);
        if (from.bits == 24) {
            ShowRow<3>(to.Row(y), from.Row(seen), from.width, bricks);
        } else if (from.bits == 32) {
            ShowRow<4>(to.Row(y), from.Row(seen), from.width, bricks);
        } else if (from.bits == 8) {
            ShowRow<1>(to.Row(y), from.Row(seen), from.width, bricks);
        } else {
            for (int32_t x = 0; x < from.width; x++) {
                const int32_t column = bricks.Seen(x) < from.width ? bricks.Seen(x) : x;
                DibSetPixel(to, x, y, DibGetPixel(from, column, seen));
            }
        }
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kGlassBlock = MakeFilter<kPage>(GlassBlockKernel);

} // namespace lmf
