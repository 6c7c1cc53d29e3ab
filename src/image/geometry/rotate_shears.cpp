#include <cmath>

#include "common/multiversion.h"
#include "image/geometry/column_lines.h"
#include "image/geometry/free_rotation.h"
#include "image/geometry/rotation_canvas.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

constexpr int32_t kTaps = 6;
constexpr int32_t kTapsBefore = 2;

/// Pixels that the shears keep around the picture, copies of its outermost ones. What the last shear reads beside an
/// edge was up to 6 pixels away before the first.
constexpr int32_t kMargin = 8;

LMF_MULTIVERSION
void WidenBytes(float *__restrict to, const uint8_t *__restrict from, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = from[i];
}

LMF_MULTIVERSION
void Convolve(uint8_t *__restrict to, const float *__restrict from, size_t count, size_t step,
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
    LineShifter(int32_t pixels, size_t pixelBytes)
        : channels(pixelBytes), numbers((static_cast<uint64_t>(pixels) + kTaps) * pixelBytes) {}

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
        for (int32_t i = 0; i < kTaps; i++)
            sum += exact[i] = lanczos.weight(i - kTapsBefore - fraction, lanczos.support);
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
Range PlaceOf(double offset, int32_t pixels, int32_t margin, int32_t size) {
    const double first = std::floor(offset) - margin, last = std::ceil(offset) + pixels + margin;
    return {static_cast<int32_t>(std::clamp(first, 0.0, static_cast<double>(size))),
            static_cast<int32_t>(std::clamp(last, 0.0, static_cast<double>(size)))};
}

/// First shear: rows, with copies of the outermost rows above and below. @return false without memory.
bool ShearIn(const WriteView &to, const ReadView &from, double slope) {
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
bool ShearDown(const WriteView &to, const ReadView &from, double slope) {
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
bool ShearOut(const RotationCanvas &canvas, const ReadView &from, const SourceMap &map, double slope) {
    const WriteView &to = canvas.to;
    LineShifter shifter(to.width, from.bits / 8);
    if (!shifter.numbers) return false;
    for (int32_t y = 0; y < to.height; y++) {
        const RowParts parts = map.PartsOf(y);
        const double offset = (to.width - from.width) / 2.0 + slope * (y + 0.5 - to.height / 2.0);
        shifter.Shift(to.Row(y), parts.covered, from.Row(y), from.width, offset);
        FinishRow(canvas, map, y, parts);
    }
    return true;
}

} // namespace

RotatedPicture RotateByShears(const ReadView &from, const RotationPlan &plan) {
    RotationCanvas canvas(from, plan);
    const double slope = plan.sine / (1.0 + plan.cosine);
    const double rows = from.height + 2.0 * kMargin;
    const double columns = from.width + std::ceil(std::fabs(slope) * rows) + 2.0 * kMargin;
    if (!canvas || columns > INT32_MAX || rows > INT32_MAX) return {};
    const auto wide = static_cast<int32_t>(columns);
    const LockedDib leaning(DibCreate(wide, static_cast<int32_t>(rows), nullptr, from.bits));
    const LockedDib upright(DibCreate(wide, plan.height, nullptr, from.bits));
    if (!leaning || !upright) return {};
    const SourceMap map(plan, from);
    if (!ShearIn(leaning.View(), from, slope) || !ShearDown(upright.View(), leaning, -plan.sine) ||
        !ShearOut(canvas, upright, map, slope))
        return {};
    return canvas.Finish();
}

} // namespace lmf
