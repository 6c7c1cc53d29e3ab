// Reduce noise: replaces each channel of a pixel by the middle one of the n values from the pixel to the right in its
// row. Where that is the highest or the lowest of them, the next distinct value towards the others is taken instead,
// so that a peak never stays; beyond the right edge everything counts as white. The setting is the radius in tenths of
// a pixel, rounded up: n is 3 up to 10, 5 up to 20 and so on. Pictures smaller than n x n are refused.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/noise/sorting_network.h"
#include "image/noise/window_width.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    HundredthsSlider(740, "Radius:", &P::Filter_ReduceNoiseRadius, {2, 50})
        .In(Unit::Pixels, 10)
        .Help("Half the length of the run of pixels whose middle value is taken, rounded up to whole pixels."),
};

/// Rows are worked on in whole groups of this many bytes.
constexpr size_t kGroup = 64;

/// Bit operations, since a compiler may make branches of conditional expressions, and no vector code of those.
[[gnu::always_inline]] inline uint8_t ChooseByte(bool condition, uint8_t yes, uint8_t no) {
    const auto mask = static_cast<uint8_t>(condition ? 0xFF : 0);
    return static_cast<uint8_t>((yes & mask) | (no & ~mask));
}

/// Middle of the values, or where that is an extreme of several distinct ones its neighbour among those.
template <size_t N>
[[gnu::always_inline]] inline uint8_t NonPeakMedian(uint8_t *wires) {
    RunNetwork<kSorter<N>>(wires);
    constexpr Wires kSorted = kSorter<N>.order;
    const uint8_t lowest = wires[kSorted.at[0]], middle = wires[kSorted.at[N / 2]], highest = wires[kSorted.at[N - 1]];
    uint8_t below = middle, above = middle;
#pragma GCC unroll 64
    for (size_t k = 0; k < N / 2; k++) {
        const uint8_t lower = wires[kSorted.at[k]], higher = wires[kSorted.at[N - 1 - k]];
        below = ChooseByte(lower != middle, lower, below);
        above = ChooseByte(higher != middle, higher, above);
    }
    return ChooseByte(lowest == middle, above, ChooseByte(highest == middle, below, middle));
}

template <size_t N>
LMF_MULTIVERSION void ReduceRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t x = 0; x < count / kGroup * kGroup; x++) {
        uint8_t wires[N];
#pragma GCC unroll 64
        for (size_t k = 0; k < N; k++) wires[k] = from[x + 3 * k];
        to[x] = NonPeakMedian<N>(wires);
    }
}

using RowFunction = void (*)(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count);
constexpr RowFunction kReduceRow[] = {ReduceRow<3>, ReduceRow<5>, ReduceRow<7>, ReduceRow<9>, ReduceRow<11>};

DibHandle ReduceNoiseKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const int32_t width = source.width, height = source.height;
    const int32_t n = WindowWidth(context.Filter_ReduceNoiseRadius / 10.0);
    if (width < n || height < n) return nullptr;

    const size_t rowBytes = static_cast<size_t>(width) * 3;
    const size_t padded = (rowBytes + kGroup - 1) / kGroup * kGroup;
    const size_t reach = 3 * static_cast<size_t>(n - 1);
    BlockArray<uint8_t> buffer(padded * 2 + reach);
    if (!buffer) return nullptr;
    uint8_t *const reduced = buffer.data, *const values = buffer.data + padded;
    std::memset(values, 0xFF, padded + reach);
    for (int32_t y = 0; y < height; y++) {
        std::memcpy(values, pass.From().Row(y), rowBytes);
        kReduceRow[n / 2 - 1](reduced, values, padded);
        std::memcpy(pass.To().Row(y), reduced, rowBytes);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kReduceNoise = MakeFilter<kPage>(ReduceNoiseKernel);

} // namespace lmf
