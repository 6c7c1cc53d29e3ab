#include "image/scale/resample.h"

#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "image/geometry/transpose.h"

namespace lmf {

namespace {

/// The samples first <= i < first + count of a line that make up one output sample.
struct Contribution {
    int32_t first;
    int32_t count;      ///< may be below 1: such a sample is 0
    int64_t firstEntry; ///< where its weights start
};

/// How each output sample along one axis comes from the source's.
struct AxisWeights {
    double factor;
    double scale;
    double support;
    int32_t size, newSize;
    const ResampleWindow &window;
    int32_t mostEntries = 0; ///< largest count of all
    bool copies = false;     ///< does every sample come out as it is?
    BlockArray<Contribution> contributions;
    BlockArray<double> weights;

    AxisWeights(int32_t from, int32_t to, double growth, const ResampleWindow &shape, double blur);

    explicit operator bool() const { return contributions && weights; }
    double CentreOf(int32_t position) const { return (position + 0.5) / factor; }
    /// The line behind the last one that weighs in on an output sample. Neither it nor the first ever goes back.
    int32_t EndOf(int32_t position) const { return contributions[position].first + contributions[position].count; }

private:
    uint64_t FillRanges();
    void FillWeights();
    bool AreWeightsOfCopies() const;
};

AxisWeights::AxisWeights(int32_t from, int32_t to, double growth, const ResampleWindow &shape, double blur)
    : factor(growth), scale(std::max(1.0 / growth, 1.0) * blur), support(scale * shape.support), size(from),
      newSize(to), window(shape), contributions(static_cast<uint64_t>(to)), weights(FillRanges()) {
    if (!*this) return;
    FillWeights();
    copies = newSize == size && AreWeightsOfCopies();
}

/// @return how many weights there are; at least 1.
uint64_t AxisWeights::FillRanges() {
    if (!contributions) return 0;
    if (!(support > 0.5)) {
        support = 0.500001;
        scale = 1.0;
    }
    int64_t entries = 0;
    for (int32_t i = 0; i < newSize; i++) {
        const double centre = CentreOf(i);
        const auto start = static_cast<int32_t>(std::max(centre - support + 0.5, 0.0));
        const auto stop = static_cast<int32_t>(std::min(centre + support + 0.5, static_cast<double>(size)));
        contributions[i] = {start, stop - start, entries};
        entries += std::max(stop - start, 0);
        mostEntries = std::max(mostEntries, stop - start);
    }
    return static_cast<uint64_t>(entries) + 1;
}

void AxisWeights::FillWeights() {
    const double inverse = 1.0 / scale;
    for (int32_t position = 0; position < newSize; position++) {
        const Contribution part = contributions[position];
        const double centre = CentreOf(position);
        double *partWeights = &weights[part.firstEntry];
        double density = 0.0;
        for (int32_t i = 0; i < part.count; i++) {
            partWeights[i] = window.weight((part.first + i - centre + 0.5) * inverse, window.support);
            density += partWeights[i];
        }
        if (density == 0.0 || density == 1.0) continue;
        const double reciprocal = 1.0 / density;
        for (int32_t i = 0; i < part.count; i++) partWeights[i] *= reciprocal;
    }
}

/// Is each sample 1 part of its own and next to nothing of others? Most windows give such weights where the size stays;
/// what they give of others is too little to change the rounded sum of bytes.
bool AxisWeights::AreWeightsOfCopies() const {
    constexpr double kNothing = 1e-9;
    for (int32_t position = 0; position < newSize; position++) {
        const Contribution part = contributions[position];
        double others = 0.0;
        for (int32_t i = 0; i < part.count; i++)
            others += std::abs(weights[part.firstEntry + i] - (part.first + i == position ? 1.0 : 0.0));
        if (others > kNothing || position < part.first || position >= part.first + part.count) return false;
    }
    return true;
}

/// Lines of bytes at a fixed distance from each other, by their numbers.
template <typename Byte>
struct ByteLines {
    Byte *first;
    ptrdiff_t stride;
    int32_t number = 0; ///< of the first line

    Byte *At(int32_t line) const { return first + (line - number) * stride; }
    /// The same lines without their first bytes.
    ByteLines From(size_t byte) const { return {first + byte, stride, number}; }
};
using ReadLines = ByteLines<const uint8_t>;
using WriteLines = ByteLines<uint8_t>;

/// Makes `newSize` lines of `to` the weighted sums of some lines of `from`, over the first `length` bytes of every
/// line. Each sum grows in the order of the lines, whatever is computed side by side. `work` has room for as many lines
/// of numbers as weigh in on one sum, and one more.
LMF_MULTIVERSION
void ScaleLines(WriteLines to, ReadLines from, size_t length, const Contribution *contributions, const double *weights,
                int32_t newSize, int32_t mostEntries, double *work) {
    double *__restrict sums = work + static_cast<size_t>(mostEntries) * length;
    // Lines as numbers, line i in slot i % mostEntries: each is converted once and serves all sums that it is part of.
    const auto slot = [=](int32_t line) { return work + static_cast<size_t>(line % mostEntries) * length; };
    int32_t nextLine = 0;
    for (int32_t position = 0; position < newSize; position++) {
        const Contribution part = contributions[position];
        const int32_t end = part.first + part.count;
        for (nextLine = std::max(nextLine, part.first); nextLine < end; nextLine++) {
            double *__restrict numbers = slot(nextLine);
            const uint8_t *__restrict bytes = from.At(nextLine);
            for (size_t i = 0; i < length; i++) numbers[i] = bytes[i];
        }
        for (size_t i = 0; i < length; i++) sums[i] = 0.0;
        const double *w = weights + part.firstEntry;
        int32_t line = part.first;
        for (; line + 4 <= end; line += 4, w += 4) {
            const double *__restrict a = slot(line), *__restrict b = slot(line + 1);
            const double *__restrict c = slot(line + 2), *__restrict d = slot(line + 3);
            const double wa = w[0], wb = w[1], wc = w[2], wd = w[3];
            for (size_t i = 0; i < length; i++) sums[i] = (((sums[i] + wa * a[i]) + wb * b[i]) + wc * c[i]) + wd * d[i];
        }
        for (; line < end; line++, w++) {
            const double *__restrict a = slot(line);
            const double wa = *w;
            for (size_t i = 0; i < length; i++) sums[i] += wa * a[i];
        }
        uint8_t *__restrict bytes = to.At(position);
        for (size_t i = 0; i < length; i++) {
            double value = sums[i] > 0.0 ? sums[i] : 0.0;
            value = value < 255.0 ? value : 255.0;
            bytes[i] = static_cast<uint8_t>(static_cast<int32_t>(value + 0.5));
        }
    }
}

constexpr size_t kWorkingSet = 32 << 10; ///< bytes that stay in the fastest cache
constexpr int32_t kBlockRows = 64;       ///< rows that the horizontal pass takes together
constexpr size_t kWindowBytes = 8 << 20; ///< that rows on their way to the vertical pass may take up

/// Rows in order of which only some at a time are held.
struct RowWindow {
    size_t rowBytes;
    int32_t first = 0, end = 0; ///< the rows that are held
    BlockArray<uint8_t> bytes;

    RowWindow(size_t rowBytes, int32_t mostRows)
        : rowBytes(rowBytes), bytes(rowBytes * static_cast<size_t>(mostRows)) {}

    uint8_t *Row(int32_t y) { return bytes.data + static_cast<size_t>(y - first) * rowBytes; }
    ReadLines Lines() const { return {bytes.data, static_cast<ptrdiff_t>(rowBytes), first}; }

    /// Lets go of the rows before `newFirst` and makes room up to `newEnd`.
    /// @return the first row that is still to be written.
    int32_t Advance(int32_t newFirst, int32_t newEnd) {
        if (newFirst < end) std::memmove(bytes.data, Row(newFirst), static_cast<size_t>(end - newFirst) * rowBytes);
        const int32_t missing = std::max(newFirst, end);
        first = newFirst;
        end = std::max(newEnd, missing);
        return missing;
    }
};

/// The vertical pass over rows of some bytes, in strips narrow enough for their numbers to stay in the cache.
struct VerticalPass {
    const AxisWeights &axis;
    size_t rowBytes;
    int32_t mostRows; ///< of the source that one call may need
    size_t strip;
    BlockArray<double> work;

    VerticalPass(const AxisWeights &axis, size_t rowBytes)
        : axis(axis), rowBytes(rowBytes), mostRows(MostRows()),
          strip(std::min(rowBytes, std::max<size_t>(kWorkingSet / sizeof(double) / Lines() / 64, 1) * 64)),
          work(Lines() * strip) {}

    explicit operator bool() const { return static_cast<bool>(work); }
    size_t Lines() const { return static_cast<size_t>(axis.mostEntries) + 1; }
    int32_t MostRows() const {
        const auto cheap = static_cast<int64_t>(std::clamp<size_t>(kWindowBytes / rowBytes, 1, 4 * kBlockRows));
        return static_cast<int32_t>(std::min<int64_t>(std::max(cheap, 2 * int64_t{axis.mostEntries}), axis.size));
    }
    /// Where a run of results that starts at a position ends, at most at `limit`, so that it needs no more than
    /// mostRows.
    int32_t RunEnd(int32_t position, int32_t limit) const {
        const int32_t first = axis.contributions[position].first;
        int32_t end = position + 1;
        while (end < limit && axis.EndOf(end) - first <= mostRows) end++;
        return end;
    }
    /// Writes the results first <= position < end to the rows from `to` on.
    void Run(uint8_t *to, int32_t position, int32_t end, ReadLines from) const {
        if (axis.copies) {
            for (; position < end; position++, to += rowBytes) std::memcpy(to, from.At(position), rowBytes);
            return;
        }
        for (size_t x = 0; x < rowBytes; x += strip)
            ScaleLines({to + x, static_cast<ptrdiff_t>(rowBytes)}, from.From(x), std::min(strip, rowBytes - x),
                       axis.contributions.data + position, axis.weights.data, end - position, axis.mostEntries,
                       work.data);
    }
};

/// The horizontal pass over up to kBlockRows rows, turned so that their columns are the lines.
struct HorizontalPass {
    const AxisWeights &axis;
    ptrdiff_t channels;
    BlockArray<double> work;
    BlockArray<uint8_t> turnedFrom, turnedTo;

    HorizontalPass(const AxisWeights &axis, ptrdiff_t channels)
        : axis(axis), channels(channels), work((static_cast<size_t>(axis.mostEntries) + 1) * LineBytes()),
          turnedFrom(static_cast<size_t>(axis.size) * LineBytes()),
          turnedTo(static_cast<size_t>(axis.newSize) * LineBytes()) {}

    explicit operator bool() const { return work && turnedFrom && turnedTo; }
    size_t LineBytes() const { return static_cast<size_t>(kBlockRows * channels); }
    void Run(uint8_t *to, const uint8_t *from, ptrdiff_t rows) const {
        const ptrdiff_t fromBytes = axis.size * channels, toBytes = axis.newSize * channels;
        if (axis.copies) {
            std::memcpy(to, from, static_cast<size_t>(rows * toBytes));
            return;
        }
        TransposeBytes(turnedFrom.data, rows, from, fromBytes, rows, fromBytes);
        ScaleLines({turnedTo.data, rows * channels}, {turnedFrom.data, rows * channels},
                   static_cast<size_t>(rows * channels), axis.contributions.data, axis.weights.data, axis.newSize,
                   axis.mostEntries, work.data);
        TransposeBytes(to, toBytes, turnedTo.data, rows, toBytes, rows);
    }
};

/// The cheaper order of passes, by an estimate that wraps at 32 bits.
bool IsHorizontalFirst(const AxisWeights &columns, const AxisWeights &rows) {
    const auto width = static_cast<uint32_t>(columns.size), height = static_cast<uint32_t>(rows.size);
    const auto newWidth = static_cast<uint32_t>(columns.newSize), newHeight = static_cast<uint32_t>(rows.newSize);
    return (height + newHeight) * newWidth > (width + newWidth) * newHeight;
}

/// What goes through both passes.
struct ScaledRows {
    const AxisWeights &columns, &rows;
    size_t fromBytes, toBytes; ///< of a row
    RowFunction fill, take;

    void FillRows(uint8_t *to, int32_t first, int32_t end) const {
        for (int32_t y = first; y < end; y++) fill(y, to + static_cast<size_t>(y - first) * fromBytes);
    }
    void TakeRows(uint8_t *from, int32_t first, int32_t end) const {
        for (int32_t y = first; y < end; y++) take(y, from + static_cast<size_t>(y - first) * toBytes);
    }
};

bool ScaleHorizontallyFirst(const ScaledRows &scaled, const HorizontalPass &horizontal) {
    const AxisWeights &axis = scaled.rows;
    const VerticalPass vertical(axis, scaled.toBytes);
    BlockArray<uint8_t> wide(scaled.fromBytes * kBlockRows), result(scaled.toBytes * kBlockRows);
    RowWindow narrow(scaled.toBytes, vertical.mostRows);
    if (!vertical || !wide || !result || !narrow.bytes) return false;
    for (int32_t y = 0, end = 0; y < axis.newSize; y = end) {
        end = vertical.RunEnd(y, std::min(y + kBlockRows, axis.newSize));
        const int32_t last = axis.EndOf(end - 1);
        for (int32_t row = narrow.Advance(axis.contributions[y].first, last), next = 0; row < last; row = next) {
            next = std::min(row + kBlockRows, last);
            scaled.FillRows(wide.data, row, next);
            horizontal.Run(narrow.Row(row), wide.data, next - row);
        }
        vertical.Run(result.data, y, end, narrow.Lines());
        scaled.TakeRows(result.data, y, end);
    }
    return true;
}

bool ScaleVerticallyFirst(const ScaledRows &scaled, const HorizontalPass &horizontal) {
    const AxisWeights &axis = scaled.rows;
    const VerticalPass vertical(axis, scaled.fromBytes);
    BlockArray<uint8_t> low(scaled.fromBytes * kBlockRows), result(scaled.toBytes * kBlockRows);
    RowWindow high(scaled.fromBytes, vertical.mostRows);
    if (!vertical || !low || !result || !high.bytes) return false;
    for (int32_t y = 0, blockEnd = 0; y < axis.newSize; y = blockEnd) {
        blockEnd = std::min(y + kBlockRows, axis.newSize);
        for (int32_t start = y, end = 0; start < blockEnd; start = end) {
            end = vertical.RunEnd(start, blockEnd);
            const int32_t last = axis.EndOf(end - 1), missing = high.Advance(axis.contributions[start].first, last);
            scaled.FillRows(high.Row(missing), missing, last);
            vertical.Run(low.data + static_cast<size_t>(start - y) * scaled.fromBytes, start, end, high.Lines());
        }
        horizontal.Run(result.data, low.data, blockEnd - y);
        scaled.TakeRows(result.data, y, blockEnd);
    }
    return true;
}

const ResampleWindow &WindowFor(int32_t index, double growth) {
    if (index <= kWindowAutomatic) return kResampleWindows[growth > 1.0 ? kWindowMitchell : kWindowLanczos];
    return kResampleWindows[std::min(index, 15)];
}

/// Rows of whole bytes through both passes; both sizes are at least 1. @return false without memory.
bool ScaleRowsBlurred(const RowFormat &from, RowFunction fill, int32_t newWidth, int32_t newHeight, int32_t windowIndex,
                      double blur, RowFunction take) {
    const double xFactor = std::max(static_cast<double>(newWidth) / from.width, 0.0001);
    const double yFactor = std::max(static_cast<double>(newHeight) / from.height, 0.0001);
    const ResampleWindow &window = WindowFor(windowIndex, xFactor * yFactor);
    const AxisWeights columns(from.width, newWidth, xFactor, window, blur);
    const AxisWeights rows(from.height, newHeight, yFactor, window, blur);
    if (!columns || !rows) return false;
    const size_t channels = from.bits / 8;
    const HorizontalPass horizontal(columns, static_cast<ptrdiff_t>(channels));
    if (!horizontal) return false;
    const ScaledRows scaled{
        columns, rows, static_cast<size_t>(from.width) * channels, static_cast<size_t>(newWidth) * channels,
        fill,    take};
    return (IsHorizontalFirst(columns, rows) ? ScaleHorizontallyFirst : ScaleVerticallyFirst)(scaled, horizontal);
}

} // namespace

bool ScaleRows(const RowFormat &from, RowFunction fill, int32_t newWidth, int32_t newHeight, int32_t windowIndex,
               RowFunction take) {
    if (std::min({from.width, from.height, newWidth, newHeight}) < 1) return false;
    if (newWidth != from.width || newHeight != from.height)
        return ScaleRowsBlurred(from, fill, newWidth, newHeight, windowIndex, 1.0, take);
    BlockArray<uint8_t> row(static_cast<uint64_t>(from.width) * (from.bits / 8));
    if (!row) return false;
    for (int32_t y = 0; y < from.height; y++) {
        fill(y, row.data);
        take(y, row.data);
    }
    return true;
}

DibHandle DibScale(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex, double blur) {
    if (newWidth < 1 || newHeight < 1) return nullptr;
    if (newWidth == source.width && newHeight == source.height && blur == 1.0)
        return CanReadPixels(source.bits) ? DibClone(source) : nullptr;
    LockedDib result(DibCreateLike(source, newWidth, newHeight));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    const size_t pixelBytes = source.bits / 8;
    const auto read = [&](int32_t y, uint8_t *row) {
        std::memcpy(row, source.Row(y), static_cast<size_t>(source.width) * pixelBytes);
    };
    const auto write = [&](int32_t y, const uint8_t *row) {
        std::memcpy(to.Row(y), row, static_cast<size_t>(newWidth) * pixelBytes);
    };
    const RowFormat format{source.width, source.height, source.bits};
    if (HasBytePixels(source.bits) && !ScaleRowsBlurred(format, read, newWidth, newHeight, windowIndex, blur, write))
        return nullptr;
    return result.Release();
}

DibHandle DibScaleTo(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex) {
    return DibScale(source, newWidth, newHeight, windowIndex, 1.0);
}

/// Rounds a length to whole pixels; 0 for what no picture can have.
static int32_t RoundToPixels(double length) {
    const double rounded = length + 0.5;
    return rounded >= 1.0 && rounded < 2147483648.0 ? static_cast<int32_t>(rounded) : 0;
}

DibHandle DibScalePercent(const ReadView &source, int32_t percentX, int32_t percentY, int32_t windowIndex) {
    const int32_t newWidth = RoundToPixels(static_cast<double>(source.width) * percentX / 100.0);
    const int32_t newHeight = RoundToPixels(static_cast<double>(source.height) * percentY / 100.0);
    return DibScaleTo(source, newWidth, newHeight, windowIndex);
}

void DibFitAspect(const ReadView &source, int32_t *width, int32_t *depth) {
    const double ratio =
        std::min(*width / static_cast<double>(source.width), *depth / static_cast<double>(source.height));
    *width = RoundToPixels(source.width * ratio);
    *depth = RoundToPixels(source.height * ratio);
}

} // namespace lmf
