#include "image/blur/convolve_square.h"

#include <cmath>

#include "common/multiversion.h"
#include "image/blur/taps.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

/// Sums that are worked on at once: few enough for the rows under the square to stay in a near cache as doubles.
constexpr int32_t kStrip = 768;

int32_t Wrap(int32_t place, int32_t size) {
    if (place < 0) return place + size;
    return place >= size ? place - size : place;
}

/// Writes the channels of the columns first, first + 1, ... of a wrapped memory row as doubles.
void WidenLine(const ReadView &view, int32_t memoryRow, int32_t first, int32_t columns, int32_t channels,
               double *line) {
    const uint8_t *row = view.MemoryRow(Wrap(memoryRow, view.height));
    for (int32_t i = 0; i < columns;) {
        const int32_t column = Wrap(first + i, view.width), run = std::min(columns - i, view.width - column);
        WidenBytes(line + i * channels, row + static_cast<ptrdiff_t>(column) * channels, run * channels);
        i += run;
    }
}

LMF_MULTIVERSION
void StoreSums(uint8_t *__restrict to, const double *__restrict sums, int32_t count, double divisor) {
    for (int32_t i = 0; i < count; i++) {
        const double value = sums[i] / divisor;
        to[i] = value < 0.0 ? 0 : value > 255.0 ? 255 : static_cast<uint8_t>(static_cast<int32_t>(value + 0.5));
    }
}

/// Convolves the picture strip by strip, each from the bottom up, with the rows under the square in a ring.
bool ConvolveStrips(const BytePass &pass, const SquareKernel &kernel, double divisor) {
    const ReadView &from = pass.From();
    const int32_t channels = pass.Channels(), order = kernel.order, half = order / 2;
    const int32_t stripColumns = kStrip / channels;
    const int64_t lineSize = static_cast<int64_t>(stripColumns + order - 1) * channels;
    BlockArray<double> ring(static_cast<uint64_t>(lineSize) * static_cast<uint64_t>(order));
    if (!ring) return false;
    const double *taps[SquareKernel::kMostOrder * SquareKernel::kMostOrder];
    alignas(64) double sums[kStrip];
    for (int32_t first = 0; first < from.width; first += stripColumns) {
        const int32_t columns = std::min(from.width - first, stripColumns);
        const auto lineOf = [&](int32_t row) { return ring.data + (row + half) % order * lineSize; };
        for (int32_t row = -half; row < half; row++)
            WidenLine(from, row, first - half, columns + order - 1, channels, lineOf(row));
        for (int32_t y = 0; y < from.height; y++) {
            WidenLine(from, y + half, first - half, columns + order - 1, channels, lineOf(y + half));
            for (int32_t j = 0; j < order; j++)
                for (int32_t i = 0; i < order; i++) taps[j * order + i] = lineOf(y + j - half) + i * channels;
            std::fill(sums, sums + columns * channels, 0.0);
            AddTaps(sums, taps, kernel.weights, order * order, columns * channels);
            StoreSums(pass.To().MemoryRow(y) + static_cast<ptrdiff_t>(first) * channels, sums, columns * channels,
                      divisor);
        }
    }
    return true;
}

} // namespace

SquareKernel BellKernel(int32_t order, double sigma) {
    SquareKernel kernel{order, {}};
    const int32_t half = order / 2;
    double *weight = kernel.weights;
    for (int32_t v = -half; v <= half; v++)
        for (int32_t u = -half; u <= half; u++) *weight++ = std::exp(-(u * u + v * v) / (sigma * sigma));
    return kernel;
}

DibHandle ConvolveSquare(const ReadView &picture, const SquareKernel &kernel, int32_t mode) {
    if (kernel.order > picture.width || kernel.order > picture.height) return nullptr;
    BytePass pass(picture);
    if (!pass) return nullptr;
    double sum = 0.0;
    for (int32_t i = 0; i < kernel.order * kernel.order; i++) sum += kernel.weights[i];
    const double divisor = sum != 0.0 ? sum : 1.0;
    if ((mode == kModeTrueColor || mode == kModeGrey) && !ConvolveStrips(pass, kernel, divisor)) return nullptr;
    return pass.Finish();
}

} // namespace lmf
