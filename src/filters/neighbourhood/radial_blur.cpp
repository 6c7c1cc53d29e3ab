// Radial Blur: every pixel becomes the mean of samples on an arc around the middle of the picture, as when the camera
// is turned during the exposure. "Angle" is the length of the arc in degrees. The samples come from the picture being
// written: rows above and pixels to the left are already blurred, which is part of the look.
#include <cmath>
#include <cstring>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/pixel_mean.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(700, "Angle:", &P::FilterRadialBlurAngle, {1, 45})
        .In(Unit::Degrees)
        .Help("How far the picture seems to turn: the arc along which each pixel is averaged."),
};

/// The arc in numbers that the whole picture shares. Lengths are in pixels.
struct Arc {
    double cx, cy;                     ///< middle of the picture
    double radius;                     ///< from the middle to a corner
    int32_t samples;                   ///< on the whole arc, at least 2
    BlockArray<double> cosines, sines; ///< of each sample's angle

    Arc(const ReadView &view, double angle)
        : cx(view.width * 0.5), cy(view.height * 0.5), radius(std::sqrt(cx * cx + cy * cy)),
          samples(static_cast<int32_t>(std::sqrt(radius) * (angle * 4.0) + 2.0)),
          cosines(static_cast<uint64_t>(samples)), sines(static_cast<uint64_t>(samples)) {
        if (!*this) return;
        const double theta = angle / (samples - 1);
        for (int32_t i = 0; i < samples; i++) {
            const double phi = i * theta - (samples - 1) * theta * 0.5;
            cosines[i] = std::cos(phi);
            sines[i] = std::sin(phi);
        }
    }
    /// Was there memory for its tables?
    explicit operator bool() const { return cosines && sines; }
};

/// How many samples of the arc are passed over each time at these places: all are taken far out, few near the middle.
LMF_MULTIVERSION
void FillSteps(int32_t *steps, const Arc &arc, int32_t x, int32_t count, double dy) {
    const double most = arc.samples - 1.0;
    for (int32_t i = 0; i < count; i++) {
        const double dx = x + i - arc.cx;
        const double rho = std::sqrt(dx * dx + dy * dy);
        const double step = rho != 0.0 ? arc.radius / rho : 1.0;
        steps[i] = static_cast<int32_t>(step < most ? step : most);
    }
}

/// Pixels whose samples are placed together, before any of them is written.
constexpr int32_t kRun = 64;
/// The place of a sample outside the picture. Pixels are three bytes, so that none lies there.
constexpr uint32_t kNowhere = UINT32_MAX;

/// Places the samples of a run of `count` pixels with the same step: sample k of pixel i lies `offsets[k * kRun + i]`
/// bytes from the first byte of the rows.
/// @return whether one lies outside.
LMF_MULTIVERSION
bool PlaceSamples(uint32_t *__restrict offsets, const Arc &arc, int32_t step, const ReadView &view, int32_t x,
                  int32_t count, double dy) {
    const auto width = static_cast<uint32_t>(view.width), height = static_cast<uint32_t>(view.height);
    const auto stride = static_cast<uint32_t>(view.stride);
    const double cx = arc.cx, cy = arc.cy;
    uint32_t outside = 0;
    for (int32_t k = 0; k < arc.samples; k += step, offsets += kRun) {
        const double cosine = arc.cosines[k], sine = arc.sines[k];
        const double sineDy = sine * dy, cosineDy = cosine * dy;
        for (int32_t i = 0; i < count; i++) {
            const double dx = x + i - cx;
            const auto sampleX = static_cast<uint32_t>(static_cast<int32_t>(cosine * dx + cx - sineDy + 0.5));
            const auto sampleY = static_cast<uint32_t>(static_cast<int32_t>(sine * dx + cy + cosineDy + 0.5));
            const uint32_t out = (sampleX < width ? 0 : kNowhere) | (sampleY < height ? 0 : kNowhere);
            offsets[i] = ((height - 1 - sampleY) * stride + sampleX * 3) | out;
            outside |= out;
        }
    }
    return outside != 0;
}

/// Blurs `count` pixels of row y, from x on, that share a step. Where samples lie does not depend on the pixels, so all
/// places are computed first; the pixels are then read and written strictly one after the other.
void BlurRun(const WriteView &view, const Arc &arc, const uint8_t *paper, int32_t step, int32_t x, int32_t count,
             int32_t y, uint32_t *offsets) {
    const bool outside = PlaceSamples(offsets, arc, step, view, x, count, y - arc.cy);
    const int32_t taken = (arc.samples - 1) / step + 1;
    uint8_t *pixel = view.Row(y) + static_cast<int64_t>(x) * 3;
    for (int32_t i = 0; i < count; i++, pixel += 3) {
        WriteMean(pixel, taken, [&](int32_t k) {
            const uint32_t offset = offsets[k * kRun + i];
            return outside && offset == kNowhere ? paper : view.bottom + offset;
        });
    }
}

bool BlurRows(const WriteView &view, const Arc &arc, Color paper) {
    uint8_t paperPixel[4] = {};
    StoreBgr(paperPixel + 1, paper);
    BlockArray<uint32_t> offsets(static_cast<uint64_t>(arc.samples) * kRun);
    if (!offsets) return false;
    int32_t steps[kRun];
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t begin = 0; begin < view.width; begin += kRun) {
            const int32_t part = std::min(kRun, view.width - begin);
            FillSteps(steps, arc, begin, part, y - arc.cy);
            for (int32_t first = 0, last = 1; first < part; first = last++) {
                while (last < part && steps[last] == steps[first]) last++;
                BlurRun(view, arc, paperPixel + 1, steps[first], begin + first, last - first, y, offsets.data);
            }
        }
    }
    return true;
}

DibHandle RadialBlurKernel(const ReadView &source, FilterContext &context) {
    // White of full alpha counts as lying outside, in results of 32 bits alone.
    const bool hasAlpha = source.bits == 0 || source.bits > 24;
    BytePass pass(source, hasAlpha ? context.paperColor : 0xFFFFFF);
    if (!pass.IsColor()) return nullptr;
    const Arc arc(source, context.FilterRadialBlurAngle * std::numbers::pi / 180);
    if (!arc) return nullptr;
    for (int32_t y = 0; y < source.height; y++)
        std::memcpy(pass.To().Row(y), pass.From().Row(y), static_cast<size_t>(source.width) * 3);
    return BlurRows(pass.To(), arc, context.paperColor) ? pass.Finish() : nullptr;
}

} // namespace

extern constexpr Filter kRadialBlur = MakeFilter<kPage>(RadialBlurKernel);

} // namespace lmf
