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
    Byte *first = nullptr;
    ptrdiff_t stride = 0;
    int32_t number = 0; ///< of the first line

    Byte *At(int32_t line) const { return first + (line - number) * stride; }
    /// The same lines without their first bytes.
    ByteLines From(size_t byte) const { return {first + byte, stride, number}; }
};
using ReadLines = ByteLines<const uint8_t>;
using WriteLines = ByteLines<uint8_t>;

/// Packs the first bytes of the lines first <= line < end into `to`.
void CopyLines(uint8_t *to, const ReadLines &from, int32_t first, int32_t end, size_t bytes) {
    for (int32_t line = first; line < end; line++, to += bytes) std::memcpy(to, from.At(line), bytes);
}

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

    RowWindow(size_t bytesOfRow, int32_t mostRows)
        : rowBytes(bytesOfRow), bytes(bytesOfRow * static_cast<size_t>(mostRows)) {}

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

/// The rows of a source, read where a picture has them or written in order and kept as long as they are needed.
struct SourceRows {
    const RowCall &fill;
    ReadLines picture; ///< starts at null where rows are written
    RowWindow window;

    /// Rows of a picture.
    SourceRows(const ReadLines &lines, const RowCall &write) : fill(write), picture(lines), window(0, 0) {}
    /// Rows that are written, at most `mostRows` at a time.
    SourceRows(const RowCall &write, size_t rowBytes, int32_t mostRows) : fill(write), window(rowBytes, mostRows) {}

    explicit operator bool() const { return picture.first != nullptr || window.bytes; }
    /// The rows first <= y < end; neither of them ever goes back.
    ReadLines Get(int32_t first, int32_t end) {
        if (picture.first != nullptr) return picture;
        for (int32_t y = window.Advance(first, end); y < end; y++) fill(y, window.Row(y));
        return window.Lines();
    }
};

/// The vertical pass over rows of some bytes, in strips narrow enough for their numbers to stay in the cache.
struct VerticalPass {
    const AxisWeights &axis;
    size_t rowBytes;
    size_t strip;
    BlockArray<double> work;

    VerticalPass(const AxisWeights &weights, size_t bytesOfRow)
        : axis(weights), rowBytes(bytesOfRow),
          strip(std::min(rowBytes, std::max<size_t>(kWorkingSet / sizeof(double) / Lines() / 64, 1) * 64)),
          work(Lines() * strip) {}

    explicit operator bool() const { return static_cast<bool>(work); }
    size_t Lines() const { return static_cast<size_t>(axis.mostEntries) + 1; }
    /// The rows of the source that are worth holding: many results a run, but few in large pictures.
    int32_t MostRows() const {
        const auto cheap = static_cast<int64_t>(std::clamp<size_t>(kWindowBytes / rowBytes, 1, 8 * kBlockRows));
        return static_cast<int32_t>(std::min<int64_t>(std::max(cheap, 3 * int64_t{axis.mostEntries}), axis.size));
    }
    /// Where a run of results that starts at a position ends so that it needs at most `mostRows`.
    int32_t RunEnd(int32_t position, int32_t limit, int32_t mostRows) const {
        const int32_t first = axis.contributions[position].first;
        int32_t end = position + 1;
        while (end < limit && axis.EndOf(end) - first <= mostRows) end++;
        return end;
    }
    /// Writes the results first <= position < end to the rows from `to` on.
    void Run(uint8_t *to, int32_t first, int32_t end, const ReadLines &from) const {
        if (axis.copies) return CopyLines(to, from, first, end, rowBytes);
        for (size_t x = 0; x < rowBytes; x += strip)
            ScaleLines({to + x, static_cast<ptrdiff_t>(rowBytes)}, from.From(x), std::min(strip, rowBytes - x),
                       axis.contributions.data + first, axis.weights.data, end - first, axis.mostEntries, work.data);
    }
};

/// The horizontal pass over up to kBlockRows rows, turned so that their columns are the lines.
struct HorizontalPass {
    const AxisWeights &axis;
    ptrdiff_t channels;
    BlockArray<double> work;
    BlockArray<uint8_t> turnedFrom, turnedTo;

    HorizontalPass(const AxisWeights &weights, ptrdiff_t bytesOfPixel)
        : axis(weights), channels(bytesOfPixel), work((static_cast<size_t>(axis.mostEntries) + 1) * LineBytes()),
          turnedFrom(static_cast<size_t>(axis.size) * LineBytes()),
          turnedTo(static_cast<size_t>(axis.newSize) * LineBytes()) {}

    explicit operator bool() const { return work && turnedFrom && turnedTo; }
    size_t LineBytes() const { return static_cast<size_t>(kBlockRows * channels); }
    /// Scales the rows first <= y < end to the rows from `to` on.
    void Run(uint8_t *to, const ReadLines &from, int32_t first, int32_t end) const {
        const ptrdiff_t rows = end - first, fromBytes = axis.size * channels, toBytes = axis.newSize * channels;
        if (axis.copies) return CopyLines(to, from, first, end, static_cast<size_t>(toBytes));
        TransposeBytes(turnedFrom.data, rows, from.At(first), from.stride, rows, fromBytes);
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

/// A picture on its way through both passes.
struct ScaledRows {
    const AxisWeights &columns, &rows;
    size_t fromBytes, toBytes; ///< of a row
    ReadLines picture;         ///< the source; starts at null if it is not held
    const RowCall &fill, &take;

    void TakeRows(uint8_t *from, int32_t first, int32_t end) const {
        for (int32_t y = first; y < end; y++) take(y, from + static_cast<size_t>(y - first) * toBytes);
    }
};

bool ScaleHorizontallyFirst(const ScaledRows &scaled, const HorizontalPass &horizontal) {
    const AxisWeights &axis = scaled.rows;
    const VerticalPass vertical(axis, scaled.toBytes);
    const int32_t mostRows = vertical.MostRows();
    SourceRows wide = scaled.picture.first != nullptr ? SourceRows(scaled.picture, scaled.fill)
                                                      : SourceRows(scaled.fill, scaled.fromBytes, kBlockRows);
    RowWindow narrow(scaled.toBytes, mostRows);
    BlockArray<uint8_t> result(scaled.toBytes * kBlockRows);
    if (!vertical || !wide || !narrow.bytes || !result) return false;
    for (int32_t y = 0, end = 0; y < axis.newSize; y = end) {
        end = vertical.RunEnd(y, std::min(y + kBlockRows, axis.newSize), mostRows);
        const int32_t last = axis.EndOf(end - 1);
        for (int32_t row = narrow.Advance(axis.contributions[y].first, last), next = 0; row < last; row = next) {
            next = std::min(row + kBlockRows, last);
            horizontal.Run(narrow.Row(row), wide.Get(row, next), row, next);
        }
        vertical.Run(result.data, y, end, narrow.Lines());
        scaled.TakeRows(result.data, y, end);
    }
    return true;
}

bool ScaleVerticallyFirst(const ScaledRows &scaled, const HorizontalPass &horizontal) {
    const AxisWeights &axis = scaled.rows;
    const VerticalPass vertical(axis, scaled.fromBytes);
    // Strips are faster to read from a copy of the rows, as long as that is small.
    const bool isCopyWorthIt =
        !axis.copies && static_cast<size_t>(vertical.MostRows()) * scaled.fromBytes <= 2 * kWindowBytes;
    const bool readsInPlace = scaled.picture.first != nullptr && !isCopyWorthIt;
    const int32_t mostRows = readsInPlace ? axis.size : vertical.MostRows();
    SourceRows high =
        readsInPlace ? SourceRows(scaled.picture, scaled.fill) : SourceRows(scaled.fill, scaled.fromBytes, mostRows);
    BlockArray<uint8_t> low(scaled.fromBytes * kBlockRows), result(scaled.toBytes * kBlockRows);
    if (!vertical || !high || !low || !result) return false;
    const auto lowBytes = static_cast<ptrdiff_t>(scaled.fromBytes);
    for (int32_t y = 0, blockEnd = 0; y < axis.newSize; y = blockEnd) {
        blockEnd = std::min(y + kBlockRows, axis.newSize);
        for (int32_t first = y, end = 0; first < blockEnd; first = end) {
            end = vertical.RunEnd(first, blockEnd, mostRows);
            vertical.Run(low.data + (first - y) * lowBytes, first, end,
                         high.Get(axis.contributions[first].first, axis.EndOf(end - 1)));
        }
        horizontal.Run(result.data, {low.data, lowBytes, y}, y, blockEnd);
        scaled.TakeRows(result.data, y, blockEnd);
    }
    return true;
}

const ResampleWindow &WindowFor(int32_t index, double growth) {
    if (index <= kWindowAutomatic) return kResampleWindows[growth > 1.0 ? kWindowMitchell : kWindowLanczos];
    return kResampleWindows[std::min(index, 15)];
}

/// Both passes over rows of whole bytes that `fill` writes and that may also lie in `picture`. All sizes are at
/// least 1.
/// @return false without memory.
bool ScaleBoth(const RowFormat &from, const ReadLines &picture, const RowCall &fill, int32_t newWidth,
               int32_t newHeight, int32_t windowIndex, double blur, const RowCall &take) {
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
        columns, rows, static_cast<size_t>(from.width) * channels, static_cast<size_t>(newWidth) * channels, picture,
        fill,    take};
    return (IsHorizontalFirst(columns, rows) ? ScaleHorizontallyFirst : ScaleVerticallyFirst)(scaled, horizontal);
}

/// Rounds a length to whole pixels; 0 for what no picture can have.
int32_t RoundToPixels(double length) {
    const double rounded = length + 0.5;
    return rounded >= 1.0 && rounded < 2147483648.0 ? static_cast<int32_t>(rounded) : 0;
}

} // namespace

bool ScaleRows(const RowFormat &from, RowCall fill, int32_t newWidth, int32_t newHeight, int32_t windowIndex,
               RowCall take) {
    if (std::min({from.width, from.height, newWidth, newHeight}) < 1) return false;
    if (newWidth != from.width || newHeight != from.height)
        return ScaleBoth(from, {}, fill, newWidth, newHeight, windowIndex, 1.0, take);
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
    const auto store = [&](int32_t y, const uint8_t *row) {
        std::memcpy(to.Row(y), row, static_cast<size_t>(newWidth) * pixelBytes);
    };
    if (HasBytePixels(source.bits) &&
        !ScaleBoth({source.width, source.height, source.bits}, {source.Row(0), -source.stride}, read, newWidth,
                   newHeight, windowIndex, blur, store))
        return nullptr;
    return result.Release();
}

DibHandle DibScaleTo(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex) {
    return DibScale(source, newWidth, newHeight, windowIndex, 1.0);
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
