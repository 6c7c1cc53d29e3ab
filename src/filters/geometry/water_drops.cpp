// Water Drops: every pixel takes the value of a neighbour drawn at random, as through wet glass. The aperture is the
// side of the square of neighbours, in pixels. Calls at different times differ.
#include <cstring>

#include "common/random.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1020, "Aperture:", &P::FilterWaterDropsAperture, {3, 12})
        .In(Unit::Pixels)
        .Help("How far the pixels are scattered: the side of the square that each is drawn from."),
};

/// Offset of a neighbour along one axis, from a draw of the random stream.
int32_t OffsetOf(int32_t draw, int32_t aperture) {
    return draw % aperture - aperture / 2;
}

/// A row of pixels of kBytes bytes; neighbours outside the picture give all bits set.
/// @param draws  two for each pixel, the one for the column first
template <size_t kBytes>
void ScatterRow(const BytePass &pass, int32_t y, const uint16_t *draws, int32_t aperture) {
    const ReadView from = pass.From();
    uint8_t *target = pass.To().Row(y);
    for (int32_t x = 0; x < from.width; x++, target += kBytes, draws += 2) {
        const int32_t fromX = x + OffsetOf(draws[0], aperture), fromY = y + OffsetOf(draws[1], aperture);
        const bool inside = fromX >= 0 && fromX < from.width && fromY >= 0 && fromY < from.height;
        if (inside)
            std::memcpy(target, from.Row(fromY) + static_cast<size_t>(fromX) * kBytes, kBytes);
        else
            std::memset(target, 0xFF, kBytes);
    }
}

DibHandle WaterDropsKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source, Alpha::Carried);
    const size_t drawsOfRow = static_cast<size_t>(source.width) * 2;
    BlockArray<uint16_t> draws(drawsOfRow);
    if (!pass || !draws) return nullptr;
    const int32_t channels = pass.Channels();
    const auto scatterRow = channels == 1 ? ScatterRow<1> : channels == 3 ? ScatterRow<3> : ScatterRow<4>;
    SeedRandom(static_cast<uint32_t>(context.time));
    for (int32_t y = 0; y < source.height; y++) {
        NextRandoms(draws.data, drawsOfRow);
        scatterRow(pass, y, draws.data, context.FilterWaterDropsAperture);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kWaterDrops = MakeFilter<kPage>(WaterDropsKernel);

} // namespace lmf
