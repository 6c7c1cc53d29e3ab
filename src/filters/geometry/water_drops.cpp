// Water Drops: every pixel takes the value of a neighbour drawn at random, as through wet glass. The aperture is the
// side of the square of neighbours, in pixels. Each run differs from the last.
#include <cstring>

#include "common/random.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "platform/system.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1020, "Aperture:", &P::FilterWaterDropsAperture, {3, 12}),
};

/// Offset of a neighbour along one axis, from a draw of the random stream.
static int32_t OffsetOf(int32_t draw, int32_t aperture) {
    return draw % aperture - aperture / 2;
}

/// A row of pixels of kBytes bytes; neighbours outside the picture give all bits set.
/// @param draws  two for each pixel, the one for the column first
template <size_t kBytes>
static void ScatterRow(const PixelPass &pass, int32_t y, const uint16_t *draws, int32_t aperture) {
    const ReadView from = pass.from;
    uint8_t *target = pass.to.Row(y);
    for (int32_t x = 0; x < from.width; x++, target += kBytes, draws += 2) {
        const int32_t fromX = x + OffsetOf(draws[0], aperture), fromY = y + OffsetOf(draws[1], aperture);
        const bool inside = fromX >= 0 && fromX < from.width && fromY >= 0 && fromY < from.height;
        if (inside)
            std::memcpy(target, from.Row(fromY) + static_cast<size_t>(fromX) * kBytes, kBytes);
        else
            std::memset(target, 0xFF, kBytes);
    }
}

static void ScatterRowOfAnyDepth(const PixelPass &pass, int32_t y, const uint16_t *draws, int32_t aperture) {
    for (int32_t x = 0; x < pass.from.width; x++, draws += 2) {
        const int32_t fromX = x + OffsetOf(draws[0], aperture), fromY = y + OffsetOf(draws[1], aperture);
        DibSetPixel(pass.to, x, y, DibGetPixel(pass.from, fromX, fromY));
    }
}

static DibHandle WaterDropsKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &view = pass.from;
    const size_t drawsOfRow = static_cast<size_t>(view.width) * 2;
    BlockArray<uint16_t> draws(drawsOfRow);
    if (!draws) return nullptr;
    const auto scatterRow = view.bits == 24 ? ScatterRow<3> : view.bits == 8 ? ScatterRow<1> : ScatterRowOfAnyDepth;
    const int32_t aperture = std::max(context.FilterWaterDropsAperture, 1);
    SeedRandom(static_cast<uint32_t>(SystemTime()));
    for (int32_t y = 0; y < view.height; y++) {
        NextRandoms(draws.data, drawsOfRow);
        scatterRow(pass, y, draws.data, aperture);
    }
    return pass.Finish();
}

extern constexpr Filter kWaterDrops = MakeFilter<kPage>(WaterDropsKernel);

} // namespace lmf
