// Median: replaces each channel of a pixel by the middle one of the values in a square window, which removes specks
// and keeps edges. The window's upper left corner lies on the pixel, so the picture moves up and to the left by half a
// window; what lies outside the picture counts as white. The setting is the window's radius in hundredths of a pixel,
// rounded up: 3 x 3 pixels at 100, 5 x 5 up to 200, 7 x 7 up to 300, where the page ends. Pictures smaller than the
// window are refused.
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
    Slider(580, "Radius:", &P::FilterMedianRadius, {100, 300}),
};

static constexpr int32_t kWidestNetwork = 7;
/// Bytes of a row that are worked on at a time, so that the sorted columns stay in the innermost cache.
static constexpr size_t kStrip = 512;
/// Bytes from a pixel to the right end of the widest window that has a network.
static constexpr size_t kReach = 3 * (kWidestNetwork - 1);

/// Sorted bytes of the columns at each place of a strip, or of two columns side by side: element k of place x is
/// at [k][x].
template <size_t N>
using SortedStrip = uint8_t[N][kStrip + kReach];

template <size_t N, size_t... K>
LMF_NETWORK Bytes<N> BytesAt(const SortedStrip<N> &strip, size_t x, std::index_sequence<K...>) {
    return {strip[K][x]...};
}
template <size_t N>
LMF_NETWORK Bytes<N> BytesAt(const SortedStrip<N> &strip, size_t x) {
    return BytesAt(strip, x, std::make_index_sequence<N>{});
}
template <size_t N, size_t... K>
LMF_NETWORK Bytes<N> ColumnAt(const uint8_t *const *rows, size_t x, std::index_sequence<K...>) {
    return {rows[K][x]...};
}
template <size_t N, size_t... K>
LMF_NETWORK void PutBytes(SortedStrip<N> &strip, size_t x, const Bytes<N> &bytes, std::index_sequence<K...>) {
    ((strip[K][x] = bytes[K]), ...);
}

/// Medians of the n x n windows at the kStrip bytes from the start of the n rows. A column is sorted once for the n
/// windows that share it, and two columns are merged once for all windows that hold both.
template <size_t N>
LMF_NETWORK void MedianStrip(uint8_t *__restrict to, const uint8_t *const *rows) {
    constexpr auto kColumn = std::make_index_sequence<N>{};
    constexpr size_t kPairs = kStrip + 3 * (N - 3);
    constexpr size_t kMiddle = N * N / 2;
    alignas(64) SortedStrip<N> columns;
    alignas(64) SortedStrip<2 * N> pairs;
    for (size_t x = 0; x < kStrip + 3 * (N - 1); x++)
        PutBytes(columns, x, SortBytes(ColumnAt<N>(rows, x, kColumn)), kColumn);
    for (size_t x = 0; x < kPairs; x++)
        PutBytes(pairs, x, MergeBytes(BytesAt(columns, x), BytesAt(columns, x + 3)), std::make_index_sequence<2 * N>{});
    for (size_t x = 0; x < kStrip; x++) {
        const Bytes<N> last = BytesAt(columns, x + 3 * (N - 1));
        if constexpr (N == 3)
            to[x] = SelectFromTwo<kMiddle>(BytesAt(pairs, x), last);
        else if constexpr (N == 5)
            to[x] = SelectFromTwo<kMiddle>(BytesAt(pairs, x), MergeBytes(BytesAt(pairs, x + 6), last));
        else
            to[x] = SelectFromTwo<kMiddle>(MergeBytes(BytesAt(pairs, x), BytesAt(pairs, x + 6)),
                                           MergeBytes(BytesAt(pairs, x + 12), last));
    }
}

LMF_MULTIVERSION
static void MedianStrip3(uint8_t *__restrict to, const uint8_t *const *rows) {
    MedianStrip<3>(to, rows);
}
LMF_MULTIVERSION
static void MedianStrip5(uint8_t *__restrict to, const uint8_t *const *rows) {
    MedianStrip<5>(to, rows);
}
LMF_MULTIVERSION
static void MedianStrip7(uint8_t *__restrict to, const uint8_t *const *rows) {
    MedianStrip<7>(to, rows);
}

/// A row of medians for windows of any size, by counts that follow the window along the row. The page does not lead
/// here, but a settings file may.
static void MedianRowByCounts(uint8_t *to, const uint8_t *const *rows, size_t rowBytes, int32_t n) {
    const size_t reach = 3 * static_cast<size_t>(n - 1);
    const int64_t middle = static_cast<int64_t>(n) * n / 2;
    for (size_t channel = 0; channel < 3; channel++) {
        ByteCounts counts;
        for (size_t x = channel; x < reach; x += 3) {
            for (int32_t i = 0; i < n; i++) counts.at[rows[i][x]]++;
        }
        for (size_t x = channel; x < rowBytes; x += 3) {
            for (int32_t i = 0; i < n; i++) counts.at[rows[i][x + reach]]++;
            to[x] = counts.InOrder(middle);
            for (int32_t i = 0; i < n; i++) counts.at[rows[i][x]]--;
        }
    }
}

static DibHandle MedianKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t width = pass.from.width, height = pass.from.height;
    const int32_t n = WindowWidth(context.FilterMedianRadius / 100.0, 0.5);
    if (width < n || height < n) return nullptr;

    // The rows of the window in turn, one row of white for what lies below the picture, and the row of results.
    const auto windowRows = static_cast<size_t>(n);
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    const size_t padded = (rowBytes + kStrip - 1) / kStrip * kStrip + std::max(kReach, 3 * (windowRows - 1));
    BlockArray<uint8_t> buffer(padded * (windowRows + 2));
    BlockArray<const uint8_t *> rows(windowRows);
    if (!buffer || !rows) return nullptr;
    std::memset(buffer.data, 0xFF, padded * (windowRows + 2));
    const auto bufferRow = [&](int32_t i) { return buffer.data + static_cast<size_t>(i) * padded; };
    uint8_t *const white = bufferRow(n), *const medians = bufferRow(n + 1);
    const auto medianStrip = n == 3 ? MedianStrip3 : n == 5 ? MedianStrip5 : MedianStrip7;

    for (int32_t y = 0; y < n - 1; y++) ReadBgrRow(pass.from, y, bufferRow(y));
    for (int32_t y = 0; y < height; y++) {
        const int32_t newest = y + n - 1;
        if (newest < height) ReadBgrRow(pass.from, newest, bufferRow(newest % n));
        for (int32_t i = 0; i < n; i++) rows.data[i] = y + i < height ? bufferRow((y + i) % n) : white;
        if (n > kWidestNetwork) {
            MedianRowByCounts(medians, rows.data, rowBytes, n);
        } else {
            for (size_t x = 0; x < rowBytes; x += kStrip) {
                medianStrip(medians + x, rows.data);
                for (int32_t i = 0; i < n; i++) rows.data[i] += kStrip;
            }
        }
        WriteBgrRow(pass.to, y, medians);
    }
    return pass.Finish();
}

extern constexpr Filter kMedian = MakeFilter<kPage>(MedianKernel);

} // namespace lmf
