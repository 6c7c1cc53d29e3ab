#include "image/scale/resample.h"

#include "common/multiversion.h"
#include "image/geometry/transpose.h"

namespace lmf {

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
    BlockArray<Contribution> contributions;
    BlockArray<double> weights;

    AxisWeights(int32_t from, int32_t to, double growth, const ResampleWindow &shape, double blur);

    explicit operator bool() const { return contributions && weights; }
    double CentreOf(int32_t position) const { return (position + 0.5) / factor; }

private:
    uint64_t FillRanges();
    void FillWeights();
};

AxisWeights::AxisWeights(int32_t from, int32_t to, double growth, const ResampleWindow &shape, double blur)
    : factor(growth), scale(std::max(1.0 / growth, 1.0) * blur), support(scale * shape.support), size(from),
      newSize(to), window(shape), contributions(static_cast<uint64_t>(to)), weights(FillRanges()) {
    if (*this) FillWeights();
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

/// Lines of bytes at a fixed distance from each other.
template <typename Byte>
struct ByteLines {
    Byte *first;
    ptrdiff_t stride;

    Byte *At(ptrdiff_t i) const { return first + i * stride; }
};

/// Makes each line of `to` the weighted sum of some lines of `from`, over the first `length` bytes of every line.
/// Each sum grows in the order of the lines, whatever is computed side by side. `work` has room for as many lines of
/// numbers as weigh in on one sum, and one more.
LMF_MULTIVERSION
static void ScaleLines(ByteLines<uint8_t> to, ByteLines<const uint8_t> from, size_t length,
                       const Contribution *contributions, const double *weights, int32_t newSize, int32_t mostEntries,
                       double *work) {
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

static constexpr size_t kWorkingSet = 32 << 10; ///< bytes that stay in the fastest cache
static constexpr int32_t kBlockRows = 64;       ///< rows that the horizontal pass takes together

template <typename Byte>
static ByteLines<Byte> LinesOf(const PictureView<Byte> &view, int32_t top, size_t firstByte) {
    return {view.Row(top) + firstByte, -view.stride};
}

/// The vertical pass, in strips narrow enough for their numbers to stay in the cache. @return false without memory.
static bool ScaleVertically(const WriteView &to, const ReadView &from, double factor, const ResampleWindow &window,
                            double blur) {
    const AxisWeights axis(from.height, to.height, factor, window, blur);
    const size_t rowBytes = static_cast<size_t>(from.width) * (from.bits / 8);
    const size_t lines = static_cast<size_t>(axis.mostEntries) + 1;
    const size_t strip = std::min(rowBytes, std::max<size_t>(kWorkingSet / sizeof(double) / lines / 64, 1) * 64);
    BlockArray<double> work(lines * strip);
    if (!axis || !work) return false;
    for (size_t x = 0; x < rowBytes; x += strip)
        ScaleLines(LinesOf(to, 0, x), LinesOf(from, 0, x), std::min(strip, rowBytes - x), axis.contributions.data,
                   axis.weights.data, to.height, axis.mostEntries, work.data);
    return true;
}

/// The horizontal pass: blocks of rows, turned so that their columns are the lines. @return false without memory.
static bool ScaleHorizontally(const WriteView &to, const ReadView &from, double factor, const ResampleWindow &window,
                              double blur) {
    const AxisWeights axis(from.width, to.width, factor, window, blur);
    const ptrdiff_t channels = from.bits / 8;
    const ptrdiff_t fromBytes = from.width * channels, toBytes = to.width * channels;
    const auto lineBytes = static_cast<size_t>(kBlockRows * channels);
    BlockArray<double> work((static_cast<size_t>(axis.mostEntries) + 1) * lineBytes);
    BlockArray<uint8_t> turnedFrom(static_cast<size_t>(from.width) * lineBytes);
    BlockArray<uint8_t> turnedTo(static_cast<size_t>(to.width) * lineBytes);
    if (!axis || !work || !turnedFrom || !turnedTo) return false;
    for (int32_t y = 0; y < from.height; y += kBlockRows) {
        const ptrdiff_t rows = std::min(kBlockRows, from.height - y);
        TransposeBytes(turnedFrom.data, rows, from.Row(y), -from.stride, rows, fromBytes);
        ScaleLines({turnedTo.data, rows * channels}, {turnedFrom.data, rows * channels},
                   static_cast<size_t>(rows * channels), axis.contributions.data, axis.weights.data, to.width,
                   axis.mostEntries, work.data);
        TransposeBytes(to.Row(y), -to.stride, turnedTo.data, rows, toBytes, rows);
    }
    return true;
}

/// The cheaper order of passes, by an estimate that wraps at 32 bits.
static bool IsHorizontalFirst(const ReadView &from, const WriteView &to) {
    const auto width = static_cast<uint32_t>(from.width), height = static_cast<uint32_t>(from.height);
    const auto newWidth = static_cast<uint32_t>(to.width), newHeight = static_cast<uint32_t>(to.height);
    return (height + newHeight) * newWidth > (width + newWidth) * newHeight;
}

static const ResampleWindow &WindowFor(int32_t index, double growth) {
    if (index <= kWindowAutomatic) return kResampleWindows[growth > 1.0 ? kWindowMitchell : kWindowLanczos];
    return kResampleWindows[std::min(index, 15)];
}

DibHandle DibScale(const ReadView &source, int32_t newWidth, int32_t newHeight, int32_t windowIndex, double blur) {
    if (newWidth < 1 || newHeight < 1) return nullptr;
    const int32_t width = source.width, height = source.height;
    if (newWidth == width && newHeight == height && blur == 1.0)
        return CanReadPixels(source.bits) ? DibClone(source) : nullptr;
    const uint32_t bits = source.bits;
    LockedDib result(DibCreateLike(source, newWidth, newHeight));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    if (HasBytePixels(bits)) {
        const double xFactor = std::max(static_cast<double>(newWidth) / width, 0.0001);
        const double yFactor = std::max(static_cast<double>(newHeight) / height, 0.0001);
        const bool horizontalFirst = IsHorizontalFirst(source, to);
        LockedDib between(horizontalFirst ? DibCreate(newWidth, height, nullptr, bits)
                                          : DibCreate(width, newHeight, nullptr, bits));
        const WriteView &middle = between.View();
        if (!between) return nullptr;
        const ResampleWindow &window = WindowFor(windowIndex, xFactor * yFactor);
        const bool done = horizontalFirst ? ScaleHorizontally(middle, source, xFactor, window, blur) &&
                                                ScaleVertically(to, middle, yFactor, window, blur)
                                          : ScaleVertically(middle, source, yFactor, window, blur) &&
                                                ScaleHorizontally(to, middle, xFactor, window, blur);
        if (!done) return nullptr;
    }
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
