// Water Drops: every pixel takes the value of a neighbour drawn at random, as through wet glass. The aperture is the
// side of the square of neighbours, in pixels. Each run differs from the last.
#include <cstring>

#include "common/random.h"
#include "engine/slots.h"
#include "image/pixel_map.h"
#include "platform/system.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1020, "Aperture:", &FilterParameters::FilterWaterDropsAperture, {3, 12}),
};

/// Offset of a neighbour along one axis.
static int32_t DrawOffset(int32_t aperture) {
    return NextRandom() % aperture - aperture / 2;
}

/// Scatters pixels of kBytes bytes; neighbours outside the picture give all bits set.
template <size_t kBytes>
static void ScatterBytes(const PixelPass &pass, int32_t aperture) {
    const DibView &from = pass.from.view, &to = pass.to.view;
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *target = to.Row(y);
        for (int32_t x = 0; x < from.width; x++, target += kBytes) {
            const int32_t fromX = x + DrawOffset(aperture);
            const int32_t fromY = y + DrawOffset(aperture);
            const bool inside = fromX >= 0 && fromX < from.width && fromY >= 0 && fromY < from.height;
            if (inside)
                std::memcpy(target, from.Row(fromY) + static_cast<size_t>(fromX) * kBytes, kBytes);
            else
                std::memset(target, 0xFF, kBytes);
        }
    }
}

static void ScatterPixels(const PixelPass &pass, int32_t aperture) {
    for (int32_t y = 0; y < pass.from.view.height; y++) {
        for (int32_t x = 0; x < pass.from.view.width; x++) {
            const int32_t fromX = x + DrawOffset(aperture);
            const int32_t fromY = y + DrawOffset(aperture);
            DibSetPixel(pass.to.image, x, y, DibGetPixel(pass.from.image, fromX, fromY));
        }
    }
}

static DibHandle WaterDropsKernel(DibHandle source, FilterContext *context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    SeedRandom(static_cast<uint32_t>(SystemTime()));
    const int32_t aperture = std::max(context->FilterWaterDropsAperture, 1);
    if (pass.from.view.bits == 24)
        ScatterBytes<3>(pass, aperture);
    else if (pass.from.view.bits == 8)
        ScatterBytes<1>(pass, aperture);
    else
        ScatterPixels(pass, aperture);
    return pass.Finish();
}

extern constexpr FilterSlots kWaterDrops = MakeSlots<kPage>(WaterDropsKernel);

} // namespace lmf
