// Radial Blur: every pixel becomes the mean of samples on an arc around the middle of the picture, as when the camera
// is turned during the exposure. "Angle" is the length of the arc in degrees. The samples come from the picture being
// written: rows above and pixels to the left are already blurred, which is part of the look.
#include <cmath>

#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(700, "Angle:", &FilterParameters::FilterRadialBlurAngle, {1, 45}),
};

static DibHandle RadialBlurKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const int32_t width = from.view.width, height = from.view.height;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(width, height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) DibSetPixel(to.image, x, y, DibGetPixel(from.image, x, y));
    }

    const double angle = context->FilterRadialBlurAngle * 3.141592653589793 / 180;
    const double cx = width * 0.5, cy = height * 0.5;
    const double radius = std::sqrt(cx * cx + cy * cy);
    const int32_t samples = std::max(static_cast<int32_t>(std::abs(std::sqrt(radius) * (angle * 4.0) + 2.0)), 2);
    const double theta = angle / (samples - 1);
    BlockArray<double> cosines(static_cast<uint64_t>(samples)), sines(static_cast<uint64_t>(samples));
    if (!cosines || !sines) return nullptr;
    for (int32_t i = 0; i < samples; i++) {
        const double phi = i * theta - (samples - 1) * theta * 0.5;
        cosines[i] = std::cos(phi);
        sines[i] = std::sin(phi);
    }

    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            const double dx = x - cx, dy = y - cy;
            const double rho = std::sqrt(dx * dx + dy * dy);
            int32_t step = 1;
            if (rho != 0.0) step = static_cast<int32_t>(std::clamp(std::trunc(radius / rho), 1.0, samples - 1.0));
            uint32_t red = 0, green = 0, blue = 0, count = 0;
            for (int32_t i = 0; i < samples; i += step) {
                const auto sampleX = static_cast<int32_t>(cosines[i] * dx + cx - sines[i] * dy + 0.5);
                const auto sampleY = static_cast<int32_t>(sines[i] * dx + cy + cosines[i] * dy + 0.5);
                uint32_t pixel = DibGetPixel(to.image, sampleX, sampleY);
                if (pixel == kOutside) pixel = context->paperColor;
                red += RedOf(pixel);
                green += GreenOf(pixel);
                blue += BlueOf(pixel);
                count++;
            }
            DibSetPixel(to.image, x, y, PackColor(red / count, green / count, blue / count));
        }
    }
    to.Unlock();
    return result.Release();
}

extern constexpr FilterSlots kRadialBlur = MakeSlots<kPage>(RadialBlurKernel);

} // namespace lmf
