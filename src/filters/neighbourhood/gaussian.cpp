#include "filters/neighbourhood/gaussian.h"

#include <cmath>
#include <cstring>

namespace lmf {

/// One sample of the curve on a scale three times finer than pixels. The square wraps like any 32-bit product.
static double GaussianSample(int32_t i, double sigma) {
    const auto square = static_cast<int32_t>(static_cast<uint32_t>(i) * static_cast<uint32_t>(i));
    return std::exp(-square / (sigma * 18.0 * sigma));
}

/// Adds the samples first, first + 1, ... three to a weight, and brings the sum to 1.
static int32_t BuildKernel(int32_t width, int32_t first, double sigma, BlurKernel *kernel) {
    if (!kernel->emplace(static_cast<uint64_t>(width))) return 0;
    double *weights = (*kernel)->data;
    double sum = 0.0;
    for (int32_t k = 0; k < width; k++) {
        for (int32_t i = 0; i < 3; i++) weights[k] += GaussianSample(first + k * 3 + i, sigma);
        sum += weights[k];
    }
    if (!(sum > 0.0)) return 0;
    for (int32_t k = 0; k < width; k++) weights[k] /= sum;
    return width;
}

int32_t BuildGaussianKernel(int32_t width, double sigma, BlurKernel *kernel) {
    if (width < 1) width = 3;
    return BuildKernel(width, -(3 * width / 2), sigma, kernel);
}

int32_t BuildHalfGaussianKernel(int32_t width, double sigma, BlurKernel *kernel) {
    if (width < 1) width = 3;
    return BuildKernel(width, 0, sigma, kernel);
}

template <int32_t Channels>
static void BlurLine(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    const int32_t half = width / 2;
    for (int32_t x = 0; x < count; x++) {
        const int32_t first = std::max(half - x, 0);
        const int32_t last = std::min(width, count - x + half);
        double used = 0.0;
        double sums[Channels] = {};
        for (int32_t k = first; k < last; k++) {
            used += kernel[k];
            for (int32_t c = 0; c < Channels; c++) sums[c] += kernel[k] * source[(x - half + k) * Channels + c];
        }
        const bool atAnEnd = x < half || x >= count - half;
        for (int32_t c = 0; c < Channels; c++)
            destination[x * Channels + c] = static_cast<uint8_t>(atAnEnd ? (sums[c] + 0.5) / used : sums[c] + 0.5);
    }
}

void BlurLineRgb(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine<3>(kernel, width, source, destination, count);
}

void BlurLineGrey(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine<1>(kernel, width, source, destination, count);
}

/// Blurs the columns of `image` in place, through two buffers of a column each.
static bool BlurColumns(void *image, const double *kernel, int32_t width, int32_t channels) {
    const DibView view = ViewOf(image);
    const uint64_t bytes = 3 * static_cast<uint64_t>(view.height);
    BlockArray<uint8_t> before(bytes), after(bytes);
    if (!before || !after) return false;
    for (int32_t x = 0; x < view.width; x++) {
        for (int32_t y = 0; y < view.height; y++) {
            const uint32_t pixel = DibGetPixel(image, x, y);
            for (int32_t c = 0; c < channels; c++)
                before[static_cast<int64_t>(y) * channels + c] = static_cast<uint8_t>(pixel >> (8 * c));
        }
        if (channels == 3)
            BlurLineRgb(kernel, width, before.data, after.data, view.height);
        else
            BlurLineGrey(kernel, width, before.data, after.data, view.height);
        for (int32_t y = 0; y < view.height; y++) {
            const uint8_t *value = after.data + static_cast<int64_t>(y) * channels;
            DibSetPixel(image, x, y, channels == 3 ? PackColor(value[0], value[1], value[2]) : value[0]);
        }
    }
    return true;
}

/// `channels` is the number of bytes a pixel to blur, 0 for a copy.
static DibHandle Blur(DibHandle source, double radius, double sigma, int32_t channels) {
    DibLock from(source);
    if (!from) return nullptr;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(from.view.width, from.view.height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const ptrdiff_t pixelBytes = std::min(from.view.stride, to.view.stride) * from.view.height;
    std::memcpy(to.view.bottom, from.view.bottom, static_cast<size_t>(pixelBytes));

    if (channels > 0) {
        const double nominal = 2.0 * std::ceil(radius) + 1.0;
        const int32_t side = std::min(from.view.width, from.view.height);
        BlurKernel kernel;
        const int32_t width =
            BuildGaussianKernel(nominal < side ? static_cast<int32_t>(nominal) : side, sigma, &kernel);
        const double *weights = kernel->data;
        // Depths whose rows are too short for a line of this many bytes a pixel keep their rows.
        const ptrdiff_t lineBytes = static_cast<ptrdiff_t>(from.view.width) * channels;
        if (lineBytes <= std::min(from.view.stride, to.view.stride)) {
            for (int32_t y = 0; y < from.view.height; y++) {
                if (channels == 3)
                    BlurLineRgb(weights, width, from.view.Row(y), to.view.Row(y), from.view.width);
                else
                    BlurLineGrey(weights, width, from.view.Row(y), to.view.Row(y), from.view.width);
            }
        }
        if (!BlurColumns(to.image, weights, width, channels)) return nullptr;
    }
    to.Unlock();
    return result.Release();
}

DibHandle GaussianBlurKernelRun(DibHandle source, const FilterContext *context) {
    static constexpr int32_t kBytesOfMode[] = {3, 1};
    const bool blurs = context->mode == kModeTrueColor || context->mode == kModeGrey;
    return Blur(source, context->FilterGaussianRadius / 10.0, context->FilterGaussianSigma / 10.0,
                blurs ? kBytesOfMode[context->mode] : 0);
}

DibHandle GaussianBlurDirect(DibHandle source, int32_t radiusTenths, int32_t sigmaTenths) {
    uint32_t bits = 0;
    if (!DibInfo(source, nullptr, nullptr, &bits, nullptr)) return nullptr;
    return Blur(source, radiusTenths / 10.0, sigmaTenths / 10.0, bits <= 8 ? 1 : 3);
}

} // namespace lmf
