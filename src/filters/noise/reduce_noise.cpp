// Reduce noise: replaces each channel of a pixel by the middle one of the n values from the pixel to the right in its
// row. Where that is the highest or the lowest of them, the next distinct value towards the others is taken instead,
// so that a peak never stays; beyond the right edge everything counts as white. The setting is the radius in tenths of
// a pixel, rounded up: n is 3 up to 10, 5 up to 20 and so on. Pictures smaller than n x n are refused.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/bgr_rows.h"
#include "image/core/pixel_pass.h"
#include "image/noise/byte_counts.h"
#include "image/noise/byte_network.h"
#include "image/noise/window_width.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(740, "Radius:", &P::Filter_ReduceNoiseRadius, {2, 50}),
};

/// Widest window that has a network, and that the page allows.
static constexpr int32_t kWidestNetwork = 11;
/// Rows are worked on in whole groups of this many bytes.
static constexpr size_t kGroup = 64;

/// Bit operations, since a compiler may make branches of conditional expressions, and no vector code of those.
LMF_NETWORK uint8_t ChooseByte(bool condition, uint8_t yes, uint8_t no) {
    const auto mask = static_cast<uint8_t>(condition ? 0xFF : 0);
    return static_cast<uint8_t>((yes & mask) | (no & ~mask));
}

/// The last of the bytes I that differs from `middle`, or `middle` where none does.
template <size_t N, size_t... I>
LMF_NETWORK uint8_t LastUnequal(const Bytes<N> &sorted, uint8_t middle, std::index_sequence<I...>) {
    uint8_t found = middle;
    ((found = ChooseByte(sorted[I] != middle, sorted[I], found)), ...);
    return found;
}

/// Middle of the values, or where that is an extreme of several distinct ones its neighbour among those.
template <size_t N, size_t... I>
LMF_NETWORK uint8_t NonPeakMedian(const Bytes<N> &values, std::index_sequence<I...>) {
    const Bytes<N> sorted = SortBytes(values);
    const uint8_t middle = sorted[N / 2];
    const uint8_t below = LastUnequal(sorted, middle, std::index_sequence<I...>{});
    const uint8_t above = LastUnequal(sorted, middle, std::index_sequence<N - 1 - I...>{});
    const uint8_t belowPeak = ChooseByte(sorted[N - 1] == middle, below, middle);
    return ChooseByte(sorted[0] == middle, above, belowPeak);
}

template <size_t N, size_t... I>
LMF_NETWORK void ReduceRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count,
                           std::index_sequence<I...>) {
    for (size_t x = 0; x < count / kGroup * kGroup; x++)
        to[x] = NonPeakMedian(Bytes<N>{from[x + 3 * I]...}, std::make_index_sequence<N / 2>{});
}

#define REDUCE_ROW(n)                                                                                                  \
    LMF_MULTIVERSION static void ReduceRow##n(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count) {  \
        ReduceRow<n>(to, from, count, std::make_index_sequence<n>{});                                                  \
    }
REDUCE_ROW(3)
REDUCE_ROW(5)
REDUCE_ROW(7)
REDUCE_ROW(9)
REDUCE_ROW(11)
#undef REDUCE_ROW

using RowFunction = void (*)(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count);
static constexpr RowFunction kReduceRow[] = {ReduceRow3, ReduceRow5, ReduceRow7, ReduceRow9, ReduceRow11};

/// The same for windows of any width, by counts that follow the window along the row. A settings file may ask for it.
static void ReduceRowByCounts(uint8_t *to, const uint8_t *from, size_t rowBytes, int32_t n) {
    const size_t reach = 3 * static_cast<size_t>(n - 1);
    for (size_t channel = 0; channel < 3; channel++) {
        ByteCounts counts;
        for (size_t x = channel; x < reach; x += 3) counts.at[from[x]]++;
        for (size_t x = channel; x < rowBytes; x += 3) {
            counts.at[from[x + reach]]++;
            const uint8_t lowest = counts.InOrder(0), middle = counts.InOrder(n / 2), highest = counts.InOrder(n - 1);
            to[x] = middle;
            if (middle == lowest && middle != highest) to[x] = counts.InOrder(counts.at[middle]);
            if (middle == highest && middle != lowest) to[x] = counts.InOrder(n - 1 - counts.at[middle]);
            counts.at[from[x]]--;
        }
    }
}

static DibHandle ReduceNoiseKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t width = pass.from.width, height = pass.from.height;
    const int32_t n = WindowWidth(context.Filter_ReduceNoiseRadius / 10.0, 0.5);
    if (width < n || height < n) return nullptr;

    const size_t rowBytes = static_cast<size_t>(width) * 3;
    const size_t padded = (rowBytes + kGroup - 1) / kGroup * kGroup;
    const size_t reach = 3 * static_cast<size_t>(n - 1);
    BlockArray<uint8_t> buffer(padded * 2 + reach);
    if (!buffer) return nullptr;
    uint8_t *const reduced = buffer.data, *const values = buffer.data + padded;
    std::memset(values, 0xFF, padded + reach);
    const RowFunction reduceRow = n <= kWidestNetwork ? kReduceRow[n / 2 - 1] : nullptr;
    for (int32_t y = 0; y < height; y++) {
        ReadBgrRow(pass.from, y, values);
        if (reduceRow != nullptr)
            reduceRow(reduced, values, padded);
        else
            ReduceRowByCounts(reduced, values, rowBytes, n);
        WriteBgrRow(pass.to, y, reduced);
    }
    return pass.Finish();
}

extern constexpr Filter kReduceNoise = MakeFilter<kPage>(ReduceNoiseKernel);

} // namespace lmf
