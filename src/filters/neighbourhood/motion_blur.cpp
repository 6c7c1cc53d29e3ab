// Motion Blur: every pixel trails off in one direction, as when the camera moves during the exposure. "Angle" is the
// direction of the trail in degrees, 0 up and 90 to the right; "Radius" its length in pixels, doubled; "Depth" how
// slowly it fades. Where the trail leaves the picture it meets the paper colour.
#include <cmath>

#include "engine/slots.h"
#include "filters/neighbourhood/gaussian.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(601, "Depth:", &FilterParameters::FilterMotionBlurSigma, {5, 50}),
    Slider(602, "Radius:", &FilterParameters::FilterMotionBlurRadius, {5, 300}),
    NumberEdit(600, "Angle:", &FilterParameters::FilterMotionBlurAngle, {0, 359}),
};

/// Without a radius the kernel takes the largest odd width whose last weight still counts in 8 bits.
static int32_t BuildAutomaticKernel(double sigma, BlurKernel *kernel) {
    int32_t good = 3;
    int32_t width = BuildHalfGaussianKernel(good, sigma, kernel);
    while (width > 0 && static_cast<int32_t>((**kernel)[width - 1] * 255.0) > 0) {
        good = width;
        width = BuildHalfGaussianKernel(width + 2, sigma, kernel);
    }
    return width == good || width == 0 ? width : BuildHalfGaussianKernel(good, sigma, kernel);
}

struct Shift {
    int32_t x, y; ///< pixels to the right and upwards
};

/// Where each weight takes its sample, on a line of `width` pixels in the direction of `degrees`.
static void FillShifts(BlockArray<Shift> *shifts, int32_t width, int32_t degrees) {
    const double angle = degrees * 3.141592653589793 / 180;
    const auto ox = static_cast<int32_t>(std::sin(angle) * width);
    const auto oy = static_cast<int32_t>(std::cos(angle) * width);
    const double length = std::sqrt(static_cast<double>(ox) * ox + static_cast<double>(oy) * oy);
    for (int32_t i = 0; i < width; i++) {
        (*shifts)[i].x = static_cast<int32_t>(static_cast<double>(i) * ox / length);
        (*shifts)[i].y = static_cast<int32_t>(static_cast<double>(i) * oy / length);
    }
}

static DibHandle MotionBlurKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const int32_t width = from.view.width, height = from.view.height;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(width, height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;

    const int32_t radius = context->FilterMotionBlurRadius;
    const double sigma = context->FilterMotionBlurSigma;
    BlurKernel kernel;
    const int32_t taps =
        radius >= 1 ? BuildHalfGaussianKernel(2 * radius + 1, sigma, &kernel) : BuildAutomaticKernel(sigma, &kernel);
    if (taps < 3) return nullptr;
    BlockArray<Shift> shifts(static_cast<uint64_t>(taps));
    if (!shifts) return nullptr;
    FillShifts(&shifts, taps, context->FilterMotionBlurAngle);

    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            double red = 0.0, green = 0.0, blue = 0.0;
            for (int32_t i = 0; i < taps; i++) {
                uint32_t pixel = DibGetPixel(from.image, x + shifts[i].x, y - shifts[i].y);
                if (pixel == kOutside) pixel = context->paperColor;
                red += (*kernel)[i] * RedOf(pixel);
                green += (*kernel)[i] * GreenOf(pixel);
                blue += (*kernel)[i] * BlueOf(pixel);
            }
            const uint32_t alpha = DibGetPixel(from.image, x, y) & 0xFF000000;
            DibSetPixel(to.image, x, y,
                        alpha | PackColor(static_cast<uint32_t>(red), static_cast<uint32_t>(green),
                                          static_cast<uint32_t>(blue)));
        }
    }
    to.Unlock();
    return result.Release();
}

extern constexpr FilterSlots kMotionBlur = MakeSlots<kPage>(MotionBlurKernel);

} // namespace lmf
