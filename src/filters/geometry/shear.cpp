// Shear: leans the picture. "Horizontal" leans it to the right by -30 to 30 degrees, "Vertical" lowers its right side
// by as much; both are stored with 30 added. The result grows so that nothing is cut, and the new corners take the
// paper colour.
#include <cmath>
#include <cstring>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/color/paper.h"
#include "image/core/dib_ops.h"
#include "image/geometry/column_lines.h"

namespace lmf {

namespace {

constexpr int32_t kStoredZero = 30;
constexpr PageControl kPage[] = {
    OffsetSlider(880, "Horizontal:", &P::FilterShearDegreeX, {0, 2 * kStoredZero}, kStoredZero)
        .In(Unit::Degrees)
        .Help("How far the top leans to the right; negative angles lean it to the left."),
    OffsetSlider(881, "Vertical:", &P::FilterShearDegreeY, {0, 2 * kStoredZero}, kStoredZero)
        .In(Unit::Degrees)
        .Help("How far the right side sinks; negative angles raise it."),
};

/// How far the lines of one axis are shifted.
struct Lean {
    double slope;   ///< pixels a line
    double middle;  ///< the line that stays
    int32_t margin; ///< pixels that the outermost lines need on either side

    Lean(int32_t stored, int32_t lines) : middle((lines - 1) / 2.0) {
        slope = std::tan((stored - kStoredZero) * std::numbers::pi / 180.0);
        margin = static_cast<int32_t>(std::ceil(std::fabs(slope) * middle));
    }
};

/// A shift by whole pixels and 255ths of one more.
struct Shift {
    int32_t pixels;
    uint32_t fraction;

    explicit Shift(double distance)
        : pixels(static_cast<int32_t>(std::floor(distance))),
          fraction(static_cast<uint32_t>((distance - pixels) * 255.0)) {}
};

LMF_MULTIVERSION
void BlendNeighbours(uint8_t *__restrict to, const uint8_t *__restrict line, size_t count, size_t step,
                     uint32_t fraction) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint8_t>(
            static_cast<uint16_t>(line[i + step] * (255 - fraction) + line[i] * fraction + 127) / 255);
}

/// A line of pixels with a pixel of fill at either end, ready to be blended.
struct PaddedLine {
    BlockArray<uint8_t> bytes;
    int32_t pixels;
    size_t step; ///< bytes a pixel

    PaddedLine(int32_t linePixels, size_t pixelBytes)
        : bytes((static_cast<uint64_t>(linePixels) + 2) * pixelBytes), pixels(linePixels), step(pixelBytes) {}

    /// Puts the line into `to`, a line of toPixels pixels, at its place plus the shift. What it leaves free stays.
    void Blend(uint8_t *to, int32_t toPixels, int32_t place, const uint8_t *line, const uint8_t *fill, Shift shift) {
        const size_t lineBytes = static_cast<size_t>(pixels) * step;
        std::memcpy(bytes.data, fill, step);
        std::memcpy(bytes.data + step, line, lineBytes);
        std::memcpy(bytes.data + step + lineBytes, fill, step);
        const int32_t start = place + shift.pixels;
        const auto count = static_cast<size_t>(std::min(pixels + 1, toPixels - start));
        BlendNeighbours(to + static_cast<size_t>(start) * step, bytes.data, count * step, step, shift.fraction);
    }
};

/// Shifts the rows of `from` into `to`, which is already filled. @return false without memory.
bool ShearRows(const WriteView &to, const ReadView &from, const Lean &lean, const uint8_t *fill) {
    PaddedLine line(from.width, from.bits / 8);
    if (!line.bytes) return false;
    for (int32_t y = 0; y < from.height; y++)
        line.Blend(to.Row(y), to.width, lean.margin, from.Row(y), fill, Shift(lean.slope * (lean.middle - y)));
    return true;
}

/// The same for columns; `to` may be blank. @return false without memory.
bool ShearColumns(const WriteView &to, const ReadView &from, const Lean &lean, const uint8_t *fill) {
    const ptrdiff_t channels = from.bits / 8;
    PaddedLine line(from.height, 1);
    if (!line.bytes) return false;
    return ForEachColumnLine(to, from, [&](ptrdiff_t i, uint8_t *toLine, const uint8_t *fromLine) {
        const uint8_t *channelFill = fill + i % channels;
        std::memset(toLine, *channelFill, static_cast<size_t>(to.height));
        const auto x = static_cast<double>(i / channels);
        line.Blend(toLine, to.height, lean.margin, fromLine, channelFill, Shift(lean.slope * (x - lean.middle)));
    });
}

/// A side with a margin on both ends; 0 where no picture can be that large.
int32_t Widened(int32_t side, int32_t margin) {
    const int64_t widened = side + int64_t{2} * margin;
    return widened <= INT32_MAX ? static_cast<int32_t>(widened) : 0;
}

DibHandle ShearKernel(const ReadView &source, FilterContext &context) {
    // Indexes and bits cannot be blended; the catalogue lets no such picture through.
    if (!HasBytePixels(source.bits)) return nullptr;
    const Lean across(context.FilterShearDegreeX, source.height);
    LockedDib leaning(DibCreateLike(source, Widened(source.width, across.margin), source.height));
    const WriteView &middle = leaning.View();
    if (!leaning) return nullptr;
    const uint32_t value = PaperFillValue(context.paperColor, context.mode, source);
    DibFillRect(middle, 0, 0, middle.width, middle.height, value);
    // The first pixel shows how the fill value lies in memory.
    uint8_t fill[4] = {};
    std::memcpy(fill, middle.Row(0), source.bits / 8);
    if (!ShearRows(middle, source, across, fill)) return nullptr;

    const Lean down(context.FilterShearDegreeY, middle.width);
    if (down.margin == 0) return leaning.Release();
    LockedDib result(DibCreateLike(source, middle.width, Widened(source.height, down.margin)));
    const WriteView &to = result.View();
    if (!result || !ShearColumns(to, middle, down, fill)) return nullptr;
    return result.Release();
}

} // namespace

extern constexpr Filter kShear = MakeFilter<kPage>(ShearKernel);

} // namespace lmf
