// Zoom Blur: every pixel becomes the mean of samples on the line from itself towards the middle of the picture, as when
// a lens is zoomed during the exposure. "Displacement" is the step from sample to sample in percent of the distance to
// the middle, "Cycles" the number of samples.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(1080, "Displacement:", &FilterParameters::FilterZoomBlurDisp, {100, 1000}),
    Slider(1081, "Cycles:", &FilterParameters::FilterZoomBlurCycles, {4, 40}),
};

static DibHandle ZoomBlurKernel(DibHandle source, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    const int32_t width = from.view.width, height = from.view.height;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(width, height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;

    const int32_t centreX = width / 2, centreY = height / 2;
    const auto step = static_cast<float>(context->FilterZoomBlurDisp / 100.0);
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            uint32_t pixel = DibGetPixel(from.image, x, y);
            uint32_t red = RedOf(pixel), green = GreenOf(pixel), blue = BlueOf(pixel), count = 1;
            for (int32_t i = 1; i < context->FilterZoomBlurCycles; i++) {
                const float percent = static_cast<float>(i) * step;
                const double scale = 1.0 - percent / 100.0;
                const double dx = static_cast<float>(x) - static_cast<float>(centreX);
                const double dy = static_cast<float>(y) - static_cast<float>(centreY);
                const auto sampleX = static_cast<int32_t>(dx * scale + centreX);
                const auto sampleY = static_cast<int32_t>(dy * scale + centreY);
                if (sampleX < 0 || sampleX >= width || sampleY < 0 || sampleY >= height) break;
                pixel = DibGetPixel(from.image, sampleX, sampleY);
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

extern constexpr FilterSlots kZoomBlur = MakeSlots<kPage>(ZoomBlurKernel);

} // namespace lmf
