#include "image/blur/gaussian.h"

#include <cmath>
#include <cstring>
#include <numeric>

#include "image/blur/taps.h"
#include "image/core/pixel_pass.h"
#include "image/noise/window_width.h"

namespace lmf {

namespace {

/// One sample of the curve on a scale three times finer than pixels.
double GaussianSample(int32_t i, double sigma) {
    return std::exp(-(i * i) / (sigma * 18.0 * sigma));
}

/// Adds the samples first, first + 1, ... three to a weight, and brings the sum to 1.
int32_t BuildKernel(int32_t width, int32_t first, double sigma, BlurKernel *kernel) {
    if (!kernel->emplace(static_cast<uint64_t>(width))) return 0;
    double *weights = (*kernel)->data;
    double sum = 0.0;
    for (int32_t k = 0; k < width; k++) {
        for (int32_t i = 0; i < 3; i++) weights[k] += GaussianSample(first + k * 3 + i, sigma);
        sum += weights[k];
    }
    for (int32_t k = 0; k < width; k++) weights[k] /= sum;
    return width;
}

/// Sums of a part of a line that are worked on at once, and taps that are fetched at once, so that all stays in the
/// first cache whatever the picture and the kernel.
constexpr int32_t kPart = 768;
constexpr int32_t kTapsAtOnce = 64;

/// What the weights that fall on the line add up to, for the pixels first <= x < last.
void SumUsedWeights(const double *kernel, int32_t width, int32_t count, int64_t first, int64_t last, double *used) {
    const int32_t half = width / 2;
    std::fill(used, used + (last - first), 0.0);
    for (int32_t k = 0; k < width; k++) {
        const int64_t from = std::max<int64_t>(first, half - k);
        const int64_t to = std::min<int64_t>(last, static_cast<int64_t>(count) + half - k);
        for (int64_t x = from; x < to; x++) used[x - first] += kernel[k];
    }
}

/// Sums of the bytes from `begin` on. Taps beyond the ends of the line read zeros, which change no sum.
void SumPart(const double *kernel, int32_t width, const uint8_t *source, int64_t lineBytes, int32_t channels,
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

void BlurLine(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count,
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

/// Blurs the columns of a picture of whole bytes a pixel in place. A strip of columns is worked on at once, narrow
/// enough for the rows under the kernel to stay in a near cache as doubles.
bool BlurColumns(const WriteView &view, const double *kernel, int32_t width) {
    const int32_t half = width / 2, height = view.height;
    const int64_t lineBytes = static_cast<int64_t>(view.width) * view.bits / 8;
    const auto wholeLine = static_cast<int32_t>(std::min<int64_t>((lineBytes + 63) / 64 * 64, kPart));
    const int32_t strip = std::clamp(16384 / width / 64 * 64, 64, wholeLine);
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

/// Takes the alpha of a 32-bit picture away.
void ClearAlpha(const WriteView &view) {
    if (view.bits != 32) return;
    for (int32_t y = 0; y < view.height; y++)
        for (ptrdiff_t x = 0; x < view.width; x++) view.Row(y)[x * 4 + 3] = 0;
}

} // namespace

int32_t BuildGaussianKernel(int32_t width, double sigma, BlurKernel *kernel) {
    return BuildKernel(width, -(3 * width / 2), sigma, kernel);
}

int32_t BuildHalfGaussianKernel(int32_t width, double sigma, BlurKernel *kernel) {
    return BuildKernel(width, 0, sigma, kernel);
}

void BlurLineRgb(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine(kernel, width, source, destination, count, 3);
}

void BlurLineGrey(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count) {
    BlurLine(kernel, width, source, destination, count, 1);
}

DibHandle GaussianBlurDirect(const ReadView &source, int32_t radiusTenths, int32_t sigmaTenths) {
    if (source.bits >= 1 && source.bits < 8) return DibClone(source);
    PixelPass pass(source);
    if (!pass) return nullptr;
    const WriteView &to = pass.to;
    BlurKernel kernel;
    const int32_t width = BuildGaussianKernel(std::min({source.width, source.height, WindowWidth(radiusTenths / 10.0)}),
                                              sigmaTenths / 10.0, &kernel);
    if (width == 0) return pass.Finish();

    // Rows are taken as they lie in memory, three bytes a pixel at 32 bits, too, and kept where they are too short.
    const ptrdiff_t shorter = std::min(source.stride, to.stride);
    const bool isGrey = source.bits == 8;
    const auto blurLine = isGrey ? BlurLineGrey : BlurLineRgb;
    std::memcpy(to.bottom, source.bottom, static_cast<size_t>(shorter * source.height));
    if (static_cast<ptrdiff_t>(source.width) * (isGrey ? 1 : 3) <= shorter) {
        for (int32_t y = 0; y < source.height; y++)
            blurLine(kernel->data, width, source.Row(y), to.Row(y), source.width);
    }
    if (!BlurColumns(to, kernel->data, width)) return nullptr;
    ClearAlpha(to);
    return pass.Finish();
}

DibHandle GaussianBlurKernelRun(const ReadView &source, int32_t mode, int32_t radiusTenths, int32_t sigmaTenths) {
    const bool blurs = mode == kModeTrueColor || mode == kModeGrey;
    return blurs ? GaussianBlurDirect(source, radiusTenths, sigmaTenths) : DibClone(source);
}

} // namespace lmf
