#include "image/blur/convolve_square.h"

#include <cmath>

#include "common/multiversion.h"
#include "image/blur/taps.h"
#include "image/core/pixel_pass.h"

namespace lmf {

bool BuildBell(int32_t order, double sigma, SquareKernel *kernel) {
    if (order < 1 || order > INT16_MAX || !kernel->emplace(static_cast<uint64_t>(order) * static_cast<uint64_t>(order)))
        return false;
    const int32_t half = order / 2;
    double *weight = (*kernel)->data;
    for (int32_t v = -half; v <= half; v++)
        for (int32_t u = -half; u <= half; u++) *weight++ = std::exp(-(u * u + v * v) / (sigma * sigma));
    return true;
}

/// Sums that are worked on at once: few enough for the rows under the square to stay in a near cache as doubles.
static constexpr int32_t kStrip = 768;

static int32_t Wrap(int32_t place, int32_t size) {
    if (place < 0) return place + size;
    return place >= size ? place - size : place;
}

/// One channel's byte of a pixel, column and memory row wrapped around.
static uint8_t ByteAt(const ReadView &picture, int32_t column, int32_t memoryRow, int32_t channel) {
    const ReadView &view = picture;
    const uint32_t pixel = DibGetPixel(picture, Wrap(column, view.width), view.height - 1 - memoryRow);
    // Bytes lie as blue, green, red.
    return static_cast<uint8_t>(pixel >> 8 * (2 - channel));
}

/// Writes the channels of the columns first, first + 1, ... of a wrapped memory row as doubles.
static void WidenLine(const ReadView &picture, int32_t memoryRow, int32_t first, int32_t columns, int32_t channels,
                      double *line) {
    const ReadView &view = picture;
    const int32_t row = Wrap(memoryRow, view.height);
    const bool plainBytes = view.bits == 8u * static_cast<uint32_t>(channels);
    for (int32_t i = 0; i < columns;) {
        const int32_t column = Wrap(first + i, view.width);
        if (plainBytes) {
            const int32_t run = std::min(columns - i, view.width - column);
            WidenBytes(line + i * channels, view.MemoryRow(row) + static_cast<ptrdiff_t>(column) * channels,
                       run * channels);
            i += run;
        } else {
            for (int32_t c = 0; c < channels; c++)
                line[i * channels + c] = ByteAt(picture, column, row, channels == 1 ? 2 : c);
            i++;
        }
    }
}

LMF_MULTIVERSION
static void StoreSums(uint8_t *__restrict to, const double *__restrict sums, int32_t count, double divisor) {
    for (int32_t i = 0; i < count; i++) {
        const double value = sums[i] / divisor;
        to[i] = value < 0.0 ? 0 : value > 255.0 ? 255 : static_cast<uint8_t>(static_cast<int32_t>(value + 0.5));
    }
}

static void StorePixels(const WriteView &image, const ReadView &view, int32_t memoryRow, int32_t first, int32_t columns,
                        const uint8_t *bytes, int32_t channels) {
    for (int32_t i = 0; i < columns; i++) {
        const uint8_t *pixel = bytes + i * channels;
        DibSetPixel(image, first + i, view.height - 1 - memoryRow,
                    channels == 1 ? pixel[0] : PackColor(pixel[2], pixel[1], pixel[0]));
    }
}

/// Convolves the picture strip by strip, each from the bottom up, with the rows under the square in a ring.
static bool ConvolveStrips(const WriteView &to, const ReadView &from, int32_t order, const double *kernel,
                           int32_t channels, double divisor) {
    const ReadView &view = from;
    const int32_t half = order / 2, stripColumns = kStrip / channels;
    const int64_t lineSize = static_cast<int64_t>(stripColumns + order - 1) * channels;
    BlockArray<double> ring(static_cast<uint64_t>(lineSize) * static_cast<uint64_t>(order));
    BlockArray<const double *> taps(static_cast<uint64_t>(order) * static_cast<uint64_t>(order));
    if (!ring || !taps) return false;
    const bool plainBytes = to.bits == 8u * static_cast<uint32_t>(channels);
    alignas(64) double sums[kStrip];
    uint8_t bytes[kStrip];
    for (int32_t first = 0; first < view.width; first += stripColumns) {
        const int32_t columns = std::min(view.width - first, stripColumns);
        const auto lineOf = [&](int32_t row) { return ring.data + (row + half) % order * lineSize; };
        for (int32_t row = -half; row < half; row++)
            WidenLine(from, row, first - half, columns + order - 1, channels, lineOf(row));
        for (int32_t y = 0; y < view.height; y++) {
            WidenLine(from, y + half, first - half, columns + order - 1, channels, lineOf(y + half));
            for (int32_t j = 0; j < order; j++)
                for (int32_t i = 0; i < order; i++) taps[j * order + i] = lineOf(y + j - half) + i * channels;
            std::fill(sums, sums + columns * channels, 0.0);
            AddTaps(sums, taps.data, kernel, order * order, columns * channels);
            StoreSums(plainBytes ? to.MemoryRow(y) + static_cast<ptrdiff_t>(first) * channels : bytes, sums,
                      columns * channels, divisor);
            if (!plainBytes) StorePixels(to, to, y, first, columns, bytes, channels);
        }
    }
    return true;
}

DibHandle ConvolveSquare(const ReadView &picture, int32_t order, const double *kernel, int32_t mode) {
    PixelPass pass(picture);
    if (!pass) return nullptr;
    if (order < 1 || order % 2 == 0 || order > pass.from.width || order > pass.from.height) return nullptr;

    double sum = 0.0;
    for (int32_t i = 0; i < order * order; i++) sum += kernel[i];
    const double divisor = sum != 0.0 ? sum : 1.0;
    const int32_t channels = mode == kModeTrueColor ? 3 : 1;
    const bool walks = mode == kModeTrueColor || mode == kModeGrey;
    if (walks && !ConvolveStrips(pass.to, pass.from, order, kernel, channels, divisor)) return nullptr;
    return pass.Finish();
}

} // namespace lmf
