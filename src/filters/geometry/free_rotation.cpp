#include "filters/geometry/free_rotation.h"

#include <cmath>
#include <cstring>

#include "filters/geometry/column_lines.h"
#include "filters/geometry/four_taps.h"
#include "image/multiversion.h"
#include "image/resample.h"

namespace lmf {

// Positions in the source have 30 fractional bits: steps of them are exact, so that a row's pixels fall into ranges.
static constexpr int kFractionBits = 30;
static constexpr int64_t kOne = int64_t{1} << kFractionBits;
static constexpr int64_t kHalf = kOne / 2;

/// Positions first <= i < last.
struct Range {
    int32_t first, last;
};

static Range Common(Range a, Range b) {
    const int32_t first = std::max(a.first, b.first);
    return {first, std::max(first, std::min(a.last, b.last))};
}

/// Smallest i with start + i * step >= bound, limited to 0 .. count; step above 0.
static int32_t FirstStepTo(int64_t bound, int64_t start, int64_t step, int32_t count) {
    if (start >= bound) return 0;
    return static_cast<int32_t>(std::min<int64_t>((bound - start - 1) / step + 1, count));
}

/// The i of 0 .. count - 1 with low <= start + i * step < high.
static Range StepsWithin(int64_t low, int64_t high, int64_t start, int64_t step, int32_t count) {
    if (step == 0) return {0, start >= low && start < high ? count : 0};
    if (step < 0) return StepsWithin(1 - high, 1 - low, -start, -step, count);
    return {FirstStepTo(low, start, step, count), FirstStepTo(high, start, step, count)};
}

/// Where the pixels of a row of the result come from.
struct SourceRow {
    int64_t x, y; ///< of the centre of the row's first pixel
};

/// The way back from the result to the source, in units of 2^-30 pixels; pixel i covers i .. i + 1.
struct SourceMap {
    const RotationPlan &plan;
    int32_t width, height; ///< of the source
    int64_t stepX, stepY;  ///< from a pixel to its right neighbour

    SourceMap(const RotationPlan &plan, const DibView &from)
        : plan(plan), width(from.width), height(from.height), stepX(std::llround(plan.cosine * kOne)),
          stepY(std::llround(plan.sine * kOne)) {}

    SourceRow Row(int32_t y) const {
        const double x = 0.5 - plan.width / 2.0, down = y + 0.5 - plan.height / 2.0;
        return {std::llround((plan.cosine * x - plan.sine * down + width / 2.0) * kOne),
                std::llround((plan.sine * x + plan.cosine * down + height / 2.0) * kOne)};
    }
    /// The part of a row whose centres lie in the source, less `inset` at each edge.
    Range PartInside(const SourceRow &row, int64_t inset) const {
        return Common(StepsWithin(inset, width * kOne - inset, row.x, stepX, plan.width),
                      StepsWithin(inset, height * kOne - inset, row.y, stepY, plan.width));
    }
};

/// How much of a unit at `position` lies inside 0 .. side, as 0.0 to 1.0.
static double Overlap(int64_t position, int32_t side) {
    const int64_t depth = std::min(position, side * kOne - position) + kHalf;
    return static_cast<double>(std::clamp<int64_t>(depth, 0, kOne)) / static_cast<double>(kOne);
}

/// Result and coverage, filled and blank, and the fill value as it lies in memory.
struct RotationCanvas {
    RotatedPicture made;
    DibLock to, coverage;
    uint8_t fill[4] = {};
    BlockArray<uint8_t> fillRow;

    RotationCanvas(const DibLock &from, const RotationPlan &plan)
        : made(Create(from, plan)), to(made.picture.handle), coverage(made.coverage.handle),
          fillRow(to ? static_cast<uint64_t>(to.view.stride) : 0) {
        if (!*this) return;
        const uint32_t bits = to.view.bits;
        // A row of fill: set through pixels in the last row of the picture, then taken from there.
        for (int32_t x = 0; x < plan.width; x++) DibSetPixel(to.image, x, plan.height - 1, plan.fill);
        std::memcpy(fillRow.data, to.view.bottom, static_cast<size_t>(to.view.stride));
        if (bits >= 8) std::memcpy(fill, fillRow.data, bits / 8);
    }

    explicit operator bool() const { return to && coverage && fillRow; }

    RotatedPicture Finish() {
        to.Unlock();
        coverage.Unlock();
        return std::move(made);
    }

private:
    static RotatedPicture Create(const DibLock &from, const RotationPlan &plan) {
        Palette768 palette;
        DibReadPalette(from.image, &palette);
        return {DibOwner(DibCreate(plan.width, plan.height, &palette, from.view.bits)),
                DibOwner(DibCreateGrey(plan.width, plan.height))};
    }
};

/// Completes row y, of which the pixels of `covered` hold the source's colours: fill around them, anti-aliased edges,
/// and the coverage. Pixels of `whole`, a part of `covered`, lie inside with all their area.
static void FinishRow(const RotationCanvas &canvas, const SourceMap &map, int32_t y, Range covered, Range whole) {
    const size_t channels = canvas.to.view.bits / 8;
    uint8_t *row = canvas.to.view.Row(y), *coverage = canvas.coverage.view.Row(y);
    const auto fill = [&](int32_t first, int32_t last) {
        const size_t start = static_cast<size_t>(first) * channels;
        std::memcpy(row + start, canvas.fillRow.data + start, static_cast<size_t>(last - first) * channels);
    };
    const SourceRow start = map.Row(y);
    const auto blend = [&](int32_t first, int32_t last) {
        for (int32_t x = first; x < last; x++) {
            const double inside =
                Overlap(start.x + x * map.stepX, map.width) * Overlap(start.y + x * map.stepY, map.height);
            const auto share = static_cast<int32_t>(inside * 255.0 + 0.5);
            uint8_t *pixel = row + static_cast<size_t>(x) * channels;
            for (size_t c = 0; c < channels; c++)
                pixel[c] = static_cast<uint8_t>((pixel[c] * share + canvas.fill[c] * (255 - share) + 127) / 255);
            coverage[x] = static_cast<uint8_t>(share);
        }
    };
    fill(0, covered.first);
    blend(covered.first, whole.first);
    std::memset(coverage + whole.first, 255, static_cast<size_t>(whole.last - whole.first));
    blend(whole.last, covered.last);
    fill(covered.last, map.plan.width);
}

/// The parts of a row for FinishRow: what the source covers at all, and what of it lies inside altogether.
struct RowParts {
    Range covered, whole;
};

static RowParts PartsOf(const SourceMap &map, int32_t y) {
    const SourceRow row = map.Row(y);
    const Range covered = map.PartInside(row, 1 - kHalf);
    const Range whole = Common(map.PartInside(row, kHalf), covered);
    return {covered, whole.first < whole.last ? whole : Range{covered.last, covered.last}};
}

static constexpr int kWeightBits = 8;

static inline int32_t WeightOf(int64_t position) {
    return static_cast<int32_t>(position >> (kFractionBits - kWeightBits)) & ((1 << kWeightBits) - 1);
}

/// The mix of four neighbours, for one channel or a lane for each.
template <typename Number>
static inline __attribute__((always_inline)) void MixFour(Number &mixed, const Number &p00, const Number &p10,
                                                          const Number &p01, const Number &p11, int32_t weightX,
                                                          int32_t weightY) {
    const Number above = (p00 << kWeightBits) + (p10 - p00) * weightX;
    const Number below = (p01 << kWeightBits) + (p11 - p01) * weightX;
    mixed = ((above << kWeightBits) + (below - above) * weightY + (1 << (2 * kWeightBits - 1))) >> (2 * kWeightBits);
}

/// A stretch of pixels of which all neighbours lie inside the source; `at` is the upper left neighbour of the first.
template <size_t kChannels>
static void MixInside(uint8_t *to, const DibView &from, SourceRow at, int64_t stepX, int64_t stepY, int32_t count) {
    for (; count > 0; count--, at.x += stepX, at.y += stepY, to += kChannels) {
        const uint8_t *p = from.Row(static_cast<int32_t>(at.y >> kFractionBits)) +
                           (at.x >> kFractionBits) * static_cast<int64_t>(kChannels);
        const uint8_t *q = p - from.stride;
        for (size_t c = 0; c < kChannels; c++) {
            int32_t mixed;
            MixFour<int32_t>(mixed, p[c], p[c + kChannels], q[c], q[c + kChannels], WeightOf(at.x), WeightOf(at.y));
            to[c] = static_cast<uint8_t>(mixed);
        }
    }
}

LMF_MULTIVERSION
static void MixInside24(uint8_t *to, const DibView &from, SourceRow at, int64_t stepX, int64_t stepY, int32_t count) {
    for (; count > 0; count--, at.x += stepX, at.y += stepY, to += 3) {
        const auto x = static_cast<int32_t>(at.x >> kFractionBits);
        const uint8_t *row = from.Row(static_cast<int32_t>(at.y >> kFractionBits));
        FourTaps taps;
        ReadTaps24(taps, row, row - from.stride, x, x + 1);
        IntLanes mixed;
        MixFour(mixed, taps.p00, taps.p10, taps.p01, taps.p11, WeightOf(at.x), WeightOf(at.y));
        StoreLanes24(to, mixed);
    }
}

/// A stretch along an edge: the outermost pixels stand in for the neighbours that are missing.
static void MixEdge(uint8_t *to, const DibView &from, SourceRow at, int64_t stepX, int64_t stepY, int32_t count) {
    const ptrdiff_t channels = from.bits / 8;
    for (; count > 0; count--, at.x += stepX, at.y += stepY) {
        const auto x = static_cast<int32_t>(at.x >> kFractionBits), y = static_cast<int32_t>(at.y >> kFractionBits);
        const ptrdiff_t left = std::max(x, 0) * channels, right = std::min(x + 1, from.width - 1) * channels;
        const uint8_t *p = from.Row(std::max(y, 0)), *q = from.Row(std::min(y + 1, from.height - 1));
        for (ptrdiff_t c = 0; c < channels; c++) {
            int32_t mixed;
            MixFour<int32_t>(mixed, p[left + c], p[right + c], q[left + c], q[right + c], WeightOf(at.x),
                             WeightOf(at.y));
            *to++ = static_cast<uint8_t>(mixed);
        }
    }
}

/// Runs visit(y, range) for all of 0 <= x < width in small tiles: a whole row of the result would cross so many rows of
/// the source that each read missed the caches and the page table.
template <typename Visit>
static void ForEachTileRow(int32_t width, int32_t height, Visit visit) {
    constexpr int32_t kTileWidth = 128, kTileHeight = 32;
    for (int32_t top = 0; top < height; top += std::min(kTileHeight, height - top)) {
        for (int32_t left = 0; left < width; left += std::min(kTileWidth, width - left)) {
            for (int32_t y = top; y < top + std::min(kTileHeight, height - top); y++)
                visit(y, Range{left, left + std::min(kTileWidth, width - left)});
        }
    }
}

static void MixRows(const RotationCanvas &canvas, const DibView &from, const SourceMap &map) {
    const size_t channels = from.bits / 8;
    const auto mixInside = from.bits == 8 ? MixInside<1> : from.bits == 24 ? MixInside24 : MixInside<4>;
    const auto along = [&](int32_t y, Range range, auto mix) {
        if (range.first >= range.last) return;
        const SourceRow start = map.Row(y);
        const SourceRow at{start.x - kHalf + range.first * map.stepX, start.y - kHalf + range.first * map.stepY};
        mix(canvas.to.view.Row(y) + static_cast<size_t>(range.first) * channels, from, at, map.stepX, map.stepY,
            range.last - range.first);
    };
    ForEachTileRow(map.plan.width, map.plan.height,
                   [&](int32_t y, Range tile) { along(y, Common(PartsOf(map, y).whole, tile), mixInside); });
    for (int32_t y = 0; y < map.plan.height; y++) {
        const auto [covered, whole] = PartsOf(map, y);
        along(y, {covered.first, whole.first}, MixEdge);
        along(y, {whole.last, covered.last}, MixEdge);
        FinishRow(canvas, map, y, covered, whole);
    }
}

static void PickRows(const RotationCanvas &canvas, const DibLock &from, const SourceMap &map) {
    for (int32_t y = 0; y < map.plan.height; y++) {
        const Range inside = map.PartInside(map.Row(y), 0);
        std::memcpy(canvas.to.view.Row(y), canvas.fillRow.data, static_cast<size_t>(canvas.to.view.stride));
        std::memset(canvas.coverage.view.Row(y) + inside.first, 255, static_cast<size_t>(inside.last - inside.first));
    }
    ForEachTileRow(map.plan.width, map.plan.height, [&](int32_t y, Range tile) {
        const SourceRow start = map.Row(y);
        const Range inside = Common(map.PartInside(start, 0), tile);
        for (int32_t x = inside.first; x < inside.last; x++) {
            const auto column = static_cast<int32_t>((start.x + x * map.stepX) >> kFractionBits);
            const auto row = static_cast<int32_t>((start.y + x * map.stepY) >> kFractionBits);
            DibSetPixel(canvas.to.image, x, y, DibGetPixel(from.image, column, row));
        }
    });
}

RotatedPicture RotateDirect(const DibLock &from, const RotationPlan &plan, bool interpolate) {
    RotationCanvas canvas(from, plan);
    if (!canvas) return {};
    const SourceMap map(plan, from.view);
    const uint32_t bits = from.view.bits;
    if (interpolate && (bits == 8 || bits == 24 || bits == 32))
        MixRows(canvas, from.view, map);
    else
        PickRows(canvas, from, map);
    return canvas.Finish();
}

static constexpr int32_t kTaps = 6;
static constexpr int32_t kTapsBefore = 2;

/// Pixels that the shears keep around the picture, copies of its outermost ones. What the last shear reads beside an
/// edge was up to 6 pixels away before the first.
static constexpr int32_t kMargin = 8;

LMF_MULTIVERSION
static void WidenBytes(float *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = from[i];
}

LMF_MULTIVERSION
static void Convolve(uint8_t *__restrict to, const float *__restrict from, size_t count, size_t step,
                     const float *__restrict weights) {
    const float w0 = weights[0], w1 = weights[1], w2 = weights[2], w3 = weights[3], w4 = weights[4], w5 = weights[5];
    for (size_t i = 0; i < count; i++) {
        const float *tap = from + i;
        float sum = w0 * tap[0] + w1 * tap[step] + w2 * tap[2 * step] + w3 * tap[3 * step] + w4 * tap[4 * step] +
                    w5 * tap[5 * step];
        sum = sum > 0.0f ? sum : 0.0f;
        sum = sum < 255.0f ? sum : 255.0f;
        to[i] = static_cast<uint8_t>(static_cast<int32_t>(sum + 0.5f));
    }
}

/// Moves lines by fractions of a pixel.
struct LineShifter {
    size_t channels;
    BlockArray<float> numbers;

    /// For lines of up to `pixels` pixels.
    LineShifter(int32_t pixels, size_t channels)
        : channels(channels), numbers((static_cast<uint64_t>(pixels) + kTaps) * channels) {}

    /// Pixels `range` of `to` from a line of `pixels` pixels that lies `offset` pixels to the right there.
    void Shift(uint8_t *to, Range range, const uint8_t *from, int32_t pixels, double offset) {
        if (range.first >= range.last) return;
        const double whole = std::floor(-offset);
        float weights[kTaps];
        FillWeights(weights, -offset - whole);
        Gather(from, pixels, static_cast<int32_t>(whole) + range.first - kTapsBefore, range.last - range.first + kTaps);
        Convolve(to + static_cast<size_t>(range.first) * channels, numbers.data,
                 static_cast<size_t>(range.last - range.first) * channels, channels, weights);
    }

private:
    /// Weights of the Lanczos window for a position `fraction` past the third tap.
    static void FillWeights(float *weights, double fraction) {
        const ResampleWindow &lanczos = kResampleWindows[kWindowLanczos];
        double exact[kTaps], sum = 0.0;
        for (int32_t i = 0; i < kTaps; i++) sum += exact[i] = lanczos.weight(i - kTapsBefore - fraction, 3.0);
        for (int32_t i = 0; i < kTaps; i++) weights[i] = static_cast<float>(exact[i] / sum);
    }

    /// Reads `count` pixels of a line from index `first` on; its ends go on for ever.
    void Gather(const uint8_t *from, int32_t pixels, int32_t first, int32_t count) {
        const int32_t before = std::clamp(-first, 0, count);
        const int32_t inside = std::max(std::min(pixels - (first + before), count - before), 0);
        const auto repeat = [&](int32_t start, int32_t end, int32_t pixel) {
            for (int32_t i = start; i < end; i++) {
                for (size_t c = 0; c < channels; c++)
                    numbers.data[static_cast<size_t>(i) * channels + c] =
                        from[static_cast<size_t>(pixel) * channels + c];
            }
        };
        repeat(0, before, 0);
        if (inside > 0)
            WidenBytes(numbers.data + static_cast<size_t>(before) * channels,
                       from + static_cast<size_t>(first + before) * channels, static_cast<size_t>(inside) * channels);
        repeat(before + inside, count, pixels - 1);
    }
};

/// The part of 0 .. size - 1 that a line of `pixels` pixels with `margin` more at each end covers at an offset.
static Range PlaceOf(double offset, int32_t pixels, int32_t margin, int32_t size) {
    const double first = std::floor(offset) - margin, last = std::ceil(offset) + pixels + margin;
    return {static_cast<int32_t>(std::clamp(first, 0.0, static_cast<double>(size))),
            static_cast<int32_t>(std::clamp(last, 0.0, static_cast<double>(size)))};
}

/// First shear: rows, with copies of the outermost rows above and below. @return false without memory.
static bool ShearIn(const DibView &to, const DibView &from, double slope) {
    LineShifter shifter(to.width, from.bits / 8);
    if (!shifter.numbers) return false;
    for (int32_t y = 0; y < to.height; y++) {
        const int32_t row = y - kMargin;
        const double offset = (to.width - from.width) / 2.0 + slope * (row + 0.5 - from.height / 2.0);
        shifter.Shift(to.Row(y), PlaceOf(offset, from.width, kMargin, to.width),
                      from.Row(std::clamp(row, 0, from.height - 1)), from.width, offset);
    }
    return true;
}

/// Second shear: columns. @return false without memory.
static bool ShearDown(const DibView &to, const DibView &from, double slope) {
    const ptrdiff_t channels = from.bits / 8;
    LineShifter shifter(to.height, 1);
    if (!shifter.numbers) return false;
    return ForEachColumnLine(to, from, [&](ptrdiff_t i, uint8_t *toLine, const uint8_t *fromLine) {
        const auto column = static_cast<double>(i / channels);
        const double offset = (to.height - from.height) / 2.0 + slope * (column + 0.5 - from.width / 2.0);
        shifter.Shift(toLine, PlaceOf(offset, from.height, 0, to.height), fromLine, from.height, offset);
    });
}

/// Third shear: rows, into the result.
static bool ShearOut(const RotationCanvas &canvas, const DibView &from, const SourceMap &map, double slope) {
    const DibView &to = canvas.to.view;
    LineShifter shifter(to.width, from.bits / 8);
    if (!shifter.numbers) return false;
    for (int32_t y = 0; y < to.height; y++) {
        const RowParts parts = PartsOf(map, y);
        const double offset = (to.width - from.width) / 2.0 + slope * (y + 0.5 - to.height / 2.0);
        shifter.Shift(to.Row(y), parts.covered, from.Row(y), from.width, offset);
        FinishRow(canvas, map, y, parts.covered, parts.whole);
    }
    return true;
}

RotatedPicture RotateByShears(const DibLock &from, const RotationPlan &plan) {
    RotationCanvas canvas(from, plan);
    const double slope = plan.sine / (1.0 + plan.cosine);
    const double rows = from.view.height + 2.0 * kMargin;
    const double columns = from.view.width + std::ceil(std::fabs(slope) * rows) + 2.0 * kMargin;
    if (!canvas || columns > INT32_MAX || rows > INT32_MAX) return {};
    const auto wide = static_cast<int32_t>(columns);
    DibOwner leaning(DibCreate(wide, static_cast<int32_t>(rows), nullptr, from.view.bits));
    DibOwner upright(DibCreate(wide, plan.height, nullptr, from.view.bits));
    DibLock first(leaning.handle), second(upright.handle);
    if (!first || !second) return {};
    const SourceMap map(plan, from.view);
    if (!ShearIn(first.view, from.view, slope) || !ShearDown(second.view, first.view, -plan.sine) ||
        !ShearOut(canvas, second.view, map, slope))
        return {};
    return canvas.Finish();
}

} // namespace lmf
