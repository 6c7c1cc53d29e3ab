// Motion Blur: every pixel drags a trail behind it, as when things move during the exposure. "Angle" is the direction
// in which they seem to move and in which each pixel takes its samples, in degrees, 0 up and 90 to the right; "Radius"
// is half the length of the trail in pixels; "Depth" how slowly it fades. Where the samples leave the picture they meet
// the paper colour. Pictures with alpha keep it.
#include <cmath>
#include <cstring>
#include <numbers>

#include "engine/filter.h"
#include "image/blur/gaussian.h"
#include "image/blur/taps.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(601, "Depth:", &P::FilterMotionBlurSigma, {5, 50}).In(Unit::Pixels).Help("How slowly the trail fades."),
    Slider(602, "Radius:", &P::FilterMotionBlurRadius, {5, 300}).In(Unit::Pixels).Help("Half the length of the trail."),
    NumberEdit(600, "Angle:", &P::FilterMotionBlurAngle, {0, 359})
        .In(Unit::Degrees)
        .Help("Which way things seem to move, their trail behind them: 0 is up, 90 to the right."),
};

struct Shift {
    int32_t x, y; ///< pixels to the right and upwards
};

/// Where each weight takes its sample, on a line of `width` pixels in the direction of `degrees`.
void FillShifts(BlockArray<Shift> *shifts, int32_t width, int32_t degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    const auto ox = static_cast<int32_t>(std::sin(angle) * width);
    const auto oy = static_cast<int32_t>(std::cos(angle) * width);
    const double length = std::sqrt(static_cast<double>(ox) * ox + static_cast<double>(oy) * oy);
    for (int32_t i = 0; i < width; i++) {
        (*shifts)[i].x = static_cast<int32_t>(static_cast<double>(i) * ox / length);
        (*shifts)[i].y = static_cast<int32_t>(static_cast<double>(i) * oy / length);
    }
}

/// The rows of a picture with paper on both sides, as far as the trail reaches; as many of them as a trail crosses are
/// held at a time. So every tap is a plain line of bytes.
struct PaddedRows {
    const ReadView &from;
    int64_t before, stride; ///< bytes
    int32_t held;           ///< rows; one row of paper, which stands for all rows below and above, follows them
    int32_t end = 0;        ///< the first memory row that was not copied yet
    BlockArray<uint8_t> bytes;

    PaddedRows(const ReadView &picture, Shift reach, Color paper)
        : from(picture), before(int64_t{3} * std::max(-reach.x, 0)),
          stride((int64_t{picture.width} + std::abs(reach.x)) * 3),
          held(std::min(std::abs(reach.y) + 1, picture.height)),
          bytes(static_cast<uint64_t>(stride) * (static_cast<uint64_t>(held) + 1)) {
        for (int32_t y = 0; bytes && y <= held; y++)
            for (int64_t b = 0; b < stride; b += 3) StoreBgr(Row(y) + b, paper);
    }

    /// Copies the memory rows before `newEnd`.
    void CopyUpTo(int32_t newEnd) {
        for (; end < newEnd; end++)
            std::memcpy(Row(end % held) + before, from.MemoryRow(end), static_cast<size_t>(from.width) * 3);
    }
    /// The first pixel of a memory row, or of paper where there is none.
    const uint8_t *Pixels(int64_t y) const { return Row(y >= 0 && y < from.height ? y % held : held) + before; }

private:
    uint8_t *Row(int64_t place) const { return bytes.data + stride * place; }
};

/// @return false without memory.
bool BlurRows(const WriteView &to, const ReadView &from, const BlurKernel &kernel, const Shift *shifts,
              int32_t tapCount, Color paper) {
    static constexpr int32_t kPart = 768;
    const Shift reach = shifts[tapCount - 1];
    PaddedRows rows(from, reach, paper);
    BlockArray<const uint8_t *> starts(static_cast<uint64_t>(tapCount)), taps(static_cast<uint64_t>(tapCount));
    if (!rows.bytes || !starts || !taps) return false;
    const auto lineBytes = static_cast<int64_t>(from.width) * 3;
    alignas(64) double sums[kPart];
    for (int32_t y = 0; y < from.height; y++) {
        rows.CopyUpTo(static_cast<int32_t>(std::min<int64_t>(int64_t{y} + std::max(reach.y, 0) + 1, from.height)));
        for (int32_t i = 0; i < tapCount; i++)
            starts[i] = rows.Pixels(int64_t{y} + shifts[i].y) + int64_t{3} * shifts[i].x;
        for (int64_t begin = 0; begin < lineBytes; begin += kPart) {
            for (int32_t i = 0; i < tapCount; i++) taps[i] = starts[i] + begin;
            const auto size = static_cast<int32_t>(std::min<int64_t>(lineBytes - begin, kPart));
            std::fill(sums, sums + size, 0.0);
            AddTaps(sums, taps.data, kernel->data, tapCount, size);
            TruncateSums(to.MemoryRow(y) + begin, sums, 0.0, size);
        }
    }
    return true;
}

/// Gives a 32-bit picture the alpha of another picture.
void CopyAlpha(const WriteView &to, const ReadView &from) {
    for (int32_t y = 0; y < to.height; y++)
        for (int32_t x = 0; x < to.width; x++)
            to.Row(y)[static_cast<ptrdiff_t>(x) * 4 + 3] = AlphaOf(DibGetPixel(from, x, y));
}

DibHandle MotionBlurKernel(const ReadView &source, FilterContext &context) {
    // White of full alpha counts as lying outside the picture.
    BytePass pass(source, context.paperColor);
    if (!pass.IsColor()) return nullptr;
    BlurKernel kernel;
    const int32_t taps =
        BuildHalfGaussianKernel(2 * context.FilterMotionBlurRadius + 1, context.FilterMotionBlurSigma, &kernel);
    BlockArray<Shift> shifts(static_cast<uint64_t>(taps));
    if (!shifts) return nullptr;
    FillShifts(&shifts, taps, context.FilterMotionBlurAngle);
    if (!BlurRows(pass.To(), pass.From(), kernel, shifts.data, taps, context.paperColor)) return nullptr;
    LockedDib result(pass.Finish());
    if (result && result.View().bits == 32) CopyAlpha(result.View(), source);
    return result.Release();
}

} // namespace

extern constexpr Filter kMotionBlur = MakeFilter<kPage>(MotionBlurKernel);

} // namespace lmf
