// Median: replaces each channel of a pixel by the middle one of the values in a square window, which removes specks
// and keeps edges. The window's upper left corner lies on the pixel, so the picture moves up and to the left by half a
// window; what lies outside the picture counts as white. The setting is the window's radius in hundredths of a pixel,
// rounded up: 3 x 3 pixels at 100, 5 x 5 up to 200, 7 x 7 up to 300, where the page ends. Pictures smaller than the
// window are refused.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/noise/sorting_network.h"
#include "image/noise/window_width.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(580, "Radius:", &P::FilterMedianRadius, {100, 300})
        .In(Unit::Pixels, 100)
        .Help("How far around each pixel the middle value is sought, rounded up to whole pixels."),
};

/// Bytes of a row that are worked on at a time, so that the sorted columns stay in the innermost cache.
constexpr size_t kStrip = 512;
/// Rows of the widest window, and bytes from a pixel to its right end.
constexpr int32_t kMostRows = 7;
constexpr size_t kReach = 3 * (kMostRows - 1);

/// Merges two sorted columns.
template <size_t N>
constexpr Sorter kPair = [] {
    Sorter sorter;
    sorter.order = sorter.network.Merge(WiresFrom(0, N), WiresFrom(N, N));
    return sorter;
}();

/// A network that leaves its wires as two rising sequences.
struct Halver {
    Network network;
    Wires first, second;
};

/// Merges the columns of a window, sorted pairs and a single one behind them, into two sequences of about its half.
template <size_t N>
constexpr Halver kWindow = [] {
    constexpr size_t kPairs = N / 2;
    Halver halver;
    for (size_t i = 0; i < (kPairs + 1) / 2; i++)
        halver.first = halver.network.Merge(halver.first, WiresFrom(i * 2 * N, 2 * N));
    halver.second = WiresFrom(kPairs * 2 * N, N);
    for (size_t i = (kPairs + 1) / 2; i < kPairs; i++)
        halver.second = halver.network.Merge(WiresFrom(i * 2 * N, 2 * N), halver.second);
    return halver;
}();

/// The middle byte of the window: the lowest, over all ways to take the bytes up to it from the two sequences, of the
/// higher of the two last ones.
template <size_t N>
[[gnu::always_inline]] inline uint8_t MiddleOf(const uint8_t *wires) {
    constexpr Wires kA = kWindow<N>.first, kB = kWindow<N>.second;
    constexpr size_t kTaken = N * N / 2 + 1, kFewest = kTaken - std::min(kB.count, kTaken);
    constexpr size_t kMost = std::min(kA.count, kTaken);
    uint8_t lowest = 255;
#pragma GCC unroll 64
    for (size_t a = kFewest; a <= kMost; a++) {
        const uint8_t lastOfA = a > 0 ? wires[kA.at[a - 1]] : uint8_t{0};
        const uint8_t lastOfB = a < kTaken ? wires[kB.at[kTaken - a - 1]] : uint8_t{0};
        const uint8_t higher = lastOfA < lastOfB ? lastOfB : lastOfA;
        lowest = higher < lowest ? higher : lowest;
    }
    return lowest;
}

/// Medians of the N x N windows at the kStrip bytes from the start of the N rows. A column is sorted once for the N
/// windows that share it, and two columns are merged once for all windows that hold both.
template <size_t N>
LMF_MULTIVERSION void MedianStrip(uint8_t *__restrict to, const uint8_t *const *rows) {
    // Sorted bytes of a column at each place of the strip, and of two columns side by side.
    alignas(64) uint8_t columns[N][kStrip + kReach], pairs[2 * N][kStrip + kReach];
    for (size_t x = 0; x < kStrip + 3 * (N - 1); x++) {
        uint8_t wires[N];
#pragma GCC unroll 64
        for (size_t k = 0; k < N; k++) wires[k] = rows[k][x];
        RunNetwork<kSorter<N>>(wires);
#pragma GCC unroll 64
        for (size_t k = 0; k < N; k++) columns[k][x] = wires[kSorter<N>.order.at[k]];
    }
    for (size_t x = 0; x < kStrip + 3 * (N - 3); x++) {
        uint8_t wires[2 * N];
#pragma GCC unroll 64
        for (size_t k = 0; k < 2 * N; k++) wires[k] = columns[k % N][x + k / N * 3];
        RunNetwork<kPair<N>>(wires);
#pragma GCC unroll 64
        for (size_t k = 0; k < 2 * N; k++) pairs[k][x] = wires[kPair<N>.order.at[k]];
    }
    for (size_t x = 0; x < kStrip; x++) {
        uint8_t wires[N * N];
#pragma GCC unroll 64
        for (size_t k = 0; k < N * (N - 1); k++) wires[k] = pairs[k % (2 * N)][x + k / (2 * N) * 6];
#pragma GCC unroll 64
        for (size_t k = 0; k < N; k++) wires[N * (N - 1) + k] = columns[k][x + 3 * (N - 1)];
        RunNetwork<kWindow<N>>(wires);
        to[x] = MiddleOf<N>(wires);
    }
}

DibHandle MedianKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const ReadView &from = pass.From();
    const int32_t height = from.height, n = WindowWidth(context.FilterMedianRadius / 100.0);
    if (from.width < n || height < n) return nullptr;

    // The rows of the window in turn, one row of white for what lies below the picture, and the row of results.
    const size_t rowBytes = static_cast<size_t>(from.width) * 3;
    const size_t padded = (rowBytes + kStrip - 1) / kStrip * kStrip + kReach;
    const size_t bufferBytes = padded * (static_cast<size_t>(n) + 2);
    BlockArray<uint8_t> buffer(bufferBytes);
    if (!buffer) return nullptr;
    std::memset(buffer.data, 0xFF, bufferBytes);
    const auto bufferRow = [&](int32_t i) { return buffer.data + static_cast<size_t>(i) * padded; };
    uint8_t *const white = bufferRow(n), *const medians = bufferRow(n + 1);
    const auto medianStrip = n == 3 ? MedianStrip<3> : n == 5 ? MedianStrip<5> : MedianStrip<7>;

    const auto fetchRow = [&](int32_t y) { std::memcpy(bufferRow(y % n), from.Row(y), rowBytes); };
    for (int32_t y = 0; y < n - 1; y++) fetchRow(y);
    for (int32_t y = 0; y < height; y++) {
        if (y + n - 1 < height) fetchRow(y + n - 1);
        const uint8_t *rows[kMostRows];
        for (int32_t i = 0; i < kMostRows; i++) rows[i] = i < n && y + i < height ? bufferRow((y + i) % n) : white;
        for (size_t x = 0; x < rowBytes; x += kStrip) {
            medianStrip(medians + x, rows);
            for (const uint8_t *&row : rows) row += kStrip;
        }
        std::memcpy(pass.To().Row(y), medians, rowBytes);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kMedian = MakeFilter<kPage>(MedianKernel);

} // namespace lmf
