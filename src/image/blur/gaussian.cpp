#include "image/blur/gaussian.h"

#include <cmath>
#include <cstring>
#include <numeric>

#include "image/blur/taps.h"
#include "image/core/pixel_pass.h"

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

/// Sums of a part of a line that are worked on at once, and taps that are fetched at once, so that all stays in the
/// first cache whatever the picture and the kernel.
static constexpr int32_t kPart = 768;
static constexpr int32_t kTapsAtOnce = 64;

/// What the weights that fall on the line add up to, for the pixels first <= x < last.
static void SumUsedWeights(const double *kernel, int32_t width, int32_t count, int64_t first, int64_t last,
                           double *used) {
    const int32_t half = width / 2;
    std::fill(used, used + (last - first), 0.0);
    for (int32_t k = 0; k < width; k++) {
        const int64_t from = std::max<int64_t>(first, half - k);
        const int64_t to = std::min<int64_t>(last, static_cast<int64_t>(count) + half - k);
        for (int64_t x = from; x < to; x++) used[x - first] += kernel[k];
    }
}

/// Sums of the bytes from `begin` on. Taps beyond the ends of the line read zeros, which change no sum.
static void SumPart(const double *kernel, int32_t width, const uint8_t *source, int64_t lineBytes, int32_t channels,
                    int64_t begin, int32_t size, double *sums) {
    alignas(64) double line[kPart + kTapsAtOnce * 3];
    const double *taps[kTapsAtOnce];
    std::fill(sums, sums + size, 0.0);
    for (int32_t k = 0; k < width; k += kTapsAtOnce) {
        const int32_t tapCount = std::min(width - k, kTapsAtOnce);
        const int64_t start = begin + static_cast<int64_t>(k - width / 2) * channels;
        const int64_t length = size + (tapCount - 1) * channels;
        const int64_t inside = std::clamp<int64_t>(-start, 0, length);
        const int64_t insideEnd = std::clamp<int64_t>(lineBytes - start, inside, length);
        std::fill(line, line + inside, 0.0);
        WidenBytes(line + inside, source + start + inside, static_cast<int32_t>(insideEnd - inside));
        std::fill(line + insideEnd, line + length, 0.0);
        for (int32_t i = 0; i < tapCount; i++) taps[i] = line + i * channels;
        AddTaps(sums, taps, kernel + k, tapCount, size);
    }
}

static void BlurLine(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count,
                     int32_t channels) {
    const int32_t half = width / 2;
    const int64_t lineBytes = static_cast<int64_t>(count) * channels;
    alignas(64) double sums[kPart];
    double used[kPart];
    for (int64_t begin = 0; begin < lineBytes; begin += kPart) {
        const auto size = static_cast<int32_t>(std::min<int64_t>(lineBytes - begin, kPart));
        SumPart(kernel, width, source, lineBytes, channels, begin, size, sums);
        TruncateSums(destination + begin, sums, 0.5, size);

        const auto renormalise = [&](int64_t first, int64_t last) {
            first = std::max(first, begin / channels);
            last = std::min(last, (begin + size) / channels);
            if (first >= last) return;
            SumUsedWeights(kernel, width, count, first, last, used);
            for (int64_t b = first * channels; b < last * channels; b++)
                destination[b] = static_cast<uint8_t>((sums[b - begin] + 0.5) / used[b / channels - first]);
        };
        renormalise(0, half);
        renormalise(std::max(half, count - half), count);
    }
}

void BlurLineRgb(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine(kernel, width, source, destination, count, 3);
}

void BlurLineGrey(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine(kernel, width, source, destination, count, 1);
}

/// Blurs the columns of a 24-bit or 8-bit picture in place. A strip of columns is worked on at once, narrow enough for
/// the rows under the kernel to stay in a near cache as doubles.
static bool BlurColumns(const WriteView &view, const double *kernel, int32_t width) {
    const int32_t half = width / 2, height = view.height;
    const int64_t lineBytes = static_cast<int64_t>(view.width) * view.bits / 8;
    const int32_t strip = std::clamp(16384 / width / 64 * 64, 64, kPart);
    constexpr uint64_t kLine = 64 / sizeof(double);
    BlockArray<double> block(static_cast<uint64_t>(width) * static_cast<uint64_t>(strip) + kLine);
    BlockArray<const double *> taps(2 * static_cast<uint64_t>(width));
    if (!block || !taps) return false;
    // Row y is at y modulo width; all rows start on a cache line.
    double *rows = block.data + (kLine - reinterpret_cast<uintptr_t>(block.data) / sizeof(double) % kLine) % kLine;
    // Listed twice, so that any `width` rows in turn stand side by side.
    for (int32_t i = 0; i < 2 * width; i++) taps[i] = rows + static_cast<int64_t>(i % width) * strip;

    alignas(64) double sums[kPart];
    for (int64_t begin = 0; begin < lineBytes; begin += strip) {
        const auto size = static_cast<int32_t>(std::min<int64_t>(lineBytes - begin, strip));
        int32_t ready = 0;
        for (int32_t y = 0; y < height; y++) {
            for (; ready < height && ready - y < width - half; ready++)
                WidenBytes(rows + static_cast<int64_t>(ready % width) * strip, view.Row(ready) + begin, size);
            const int32_t first = std::max(half - y, 0);
            const int32_t last = std::min(width, height - y + half);
            std::fill(sums, sums + size, 0.0);
            AddTaps(sums, taps.data + (y - half + first) % width, kernel + first, last - first, size);
            if (y < half || y >= height - half)
                TruncateRatios(view.Row(y) + begin, sums, 0.5, std::accumulate(kernel + first, kernel + last, 0.0),
                               size);
            else
                TruncateSums(view.Row(y) + begin, sums, 0.5, size);
        }
    }
    return true;
}

/// The same for any depth, through two buffers of a column each.
static bool BlurColumnsThroughPixels(const WriteView &view, const double *kernel, int32_t width, int32_t channels) {
    const uint64_t bytes = 3 * static_cast<uint64_t>(view.height);
    BlockArray<uint8_t> before(bytes), after(bytes);
    if (!before || !after) return false;
    for (int32_t x = 0; x < view.width; x++) {
        for (int32_t y = 0; y < view.height; y++) {
            const uint32_t pixel = DibGetPixel(view, x, y);
            for (int32_t c = 0; c < channels; c++)
                before[static_cast<int64_t>(y) * channels + c] = static_cast<uint8_t>(pixel >> (8 * c));
        }
        if (channels == 3)
            BlurLineRgb(kernel, width, before.data, after.data, view.height);
        else
            BlurLineGrey(kernel, width, before.data, after.data, view.height);
        for (int32_t y = 0; y < view.height; y++) {
            const uint8_t *value = after.data + static_cast<int64_t>(y) * channels;
            DibSetPixel(view, x, y, channels == 3 ? PackColor(value[0], value[1], value[2]) : value[0]);
        }
    }
    return true;
}

/// `channels` is the number of bytes a pixel to blur, 0 for a copy.
static DibHandle Blur(const ReadView &source, double radius, double sigma, int32_t channels) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const ptrdiff_t shorter = std::min(from.stride, to.stride);
    std::memcpy(to.bottom, from.bottom, static_cast<size_t>(shorter * from.height));

    if (channels > 0) {
        const double nominal = 2.0 * std::ceil(radius) + 1.0;
        const int32_t side = std::min(from.width, from.height);
        BlurKernel kernel;
        const int32_t width =
            BuildGaussianKernel(nominal < side ? static_cast<int32_t>(nominal) : side, sigma, &kernel);
        const double *weights = kernel->data;
        // Depths whose rows are too short for a line of this many bytes a pixel keep their rows.
        const ptrdiff_t lineBytes = static_cast<ptrdiff_t>(from.width) * channels;
        if (lineBytes <= shorter) {
            for (int32_t y = 0; y < from.height; y++) {
                if (channels == 3)
                    BlurLineRgb(weights, width, from.Row(y), to.Row(y), from.width);
                else
                    BlurLineGrey(weights, width, from.Row(y), to.Row(y), from.width);
            }
        }
        const bool plainBytes = width > 0 && to.bits == from.bits && to.bits == 8u * channels;
        if (!(plainBytes ? BlurColumns(to, weights, width)
                         : BlurColumnsThroughPixels(pass.to, weights, width, channels)))
            return nullptr;
    }
    return pass.Finish();
}

DibHandle GaussianBlurKernelRun(const ReadView &source, int32_t mode, int32_t radiusTenths, int32_t sigmaTenths) {
    const int32_t channels = mode == kModeTrueColor ? 3 : mode == kModeGrey ? 1 : 0;
    return Blur(source, radiusTenths / 10.0, sigmaTenths / 10.0, channels);
}

DibHandle GaussianBlurDirect(const ReadView &source, int32_t radiusTenths, int32_t sigmaTenths) {
    return Blur(source, radiusTenths / 10.0, sigmaTenths / 10.0, source.bits <= 8 ? 1 : 3);
}

} // namespace lmf
