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

/// The rows are copied once with paper on both sides, as far as the trail reaches, and one row of paper stands for all
/// rows below and above; so every tap is a plain line of bytes. False when memory is short.
bool BlurRows(const WriteView &to, const ReadView &from, const BlurKernel &kernel, const Shift *shifts,
              int32_t tapCount, Color paper) {
    static constexpr int32_t kPart = 768;
    const Shift reach = shifts[tapCount - 1];
    const int64_t before = std::max(-reach.x, 0), after = std::max(reach.x, 0);
    const int64_t stride = (before + from.width + after) * 3;
    BlockArray<uint8_t> padded(static_cast<uint64_t>(stride) * (static_cast<uint64_t>(from.height) + 1));
    BlockArray<const uint8_t *> taps(static_cast<uint64_t>(tapCount));
    if (!padded || !taps) return false;
    const size_t lineBytes = static_cast<size_t>(from.width) * 3;
    uint8_t *paperRow = padded.data + stride * from.height;
    for (int64_t b = 0; b < stride; b += 3) StoreBgr(paperRow + b, paper);
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *row = padded.data + stride * y;
        std::memcpy(row, paperRow, static_cast<size_t>(before) * 3);
        std::memcpy(row + before * 3, from.MemoryRow(y), lineBytes);
        std::memcpy(row + before * 3 + lineBytes, paperRow, static_cast<size_t>(after) * 3);
    }

    alignas(64) double sums[kPart];
    for (int32_t y = 0; y < from.height; y++) {
        for (size_t begin = 0; begin < lineBytes; begin += kPart) {
            for (int32_t i = 0; i < tapCount; i++) {
                const int64_t row = static_cast<int64_t>(y) + shifts[i].y;
                const bool inside = row >= 0 && row < from.height;
                taps[i] = (inside ? padded.data + stride * row : paperRow) + (before + shifts[i].x) * 3 + begin;
            }
            const auto size = static_cast<int32_t>(std::min<size_t>(lineBytes - begin, kPart));
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
