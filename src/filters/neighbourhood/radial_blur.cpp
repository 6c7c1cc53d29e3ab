// Radial Blur: every pixel becomes the mean of samples on an arc around the middle of the picture, as when the camera
// is turned during the exposure. "Angle" is the length of the arc in degrees. The samples come from the picture being
// written: rows above and pixels to the left are already blurred, which is part of the look.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/pixel_sum.h"
#include "image/core/dib_ops.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(700, "Angle:", &P::FilterRadialBlurAngle, {1, 45}),
};

/// The arc in numbers that the whole picture shares. Lengths are in pixels.
struct Arc {
    double cx, cy;                     ///< middle of the picture
    double radius;                     ///< from the middle to a corner
    int32_t samples;                   ///< on the whole arc, at least 2
    BlockArray<double> cosines, sines; ///< of each sample's angle

    Arc(const ReadView &view, double angle)
        : cx(view.width * 0.5), cy(view.height * 0.5), radius(std::sqrt(cx * cx + cy * cy)),
          samples(std::max(static_cast<int32_t>(std::abs(std::sqrt(radius) * (angle * 4.0) + 2.0)), 2)),
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
static void FillSteps(int32_t *steps, const Arc &arc, int32_t x, int32_t count, double dy) {
    const double most = arc.samples - 1.0;
    for (int32_t i = 0; i < count; i++) {
        const double dx = x + i - arc.cx;
        const double rho = std::sqrt(dx * dx + dy * dy);
        const double step = rho != 0.0 ? arc.radius / rho : 1.0;
        steps[i] = static_cast<int32_t>(step < most ? step : most);
        steps[i] = steps[i] < 1 ? 1 : steps[i];
    }
}

static void BlurThroughPixels(const WriteView &view, const Arc &arc, Color paper) {
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) {
            const double dx = x - arc.cx, dy = y - arc.cy;
            uint32_t red = 0, green = 0, blue = 0, count = 0;
            int32_t step;
            FillSteps(&step, arc, x, 1, dy);
            // An arc has samples, so that the first is always taken.
            int32_t i = 0;
            do {
                const auto sampleX = static_cast<int32_t>(arc.cosines[i] * dx + arc.cx - arc.sines[i] * dy + 0.5);
                const auto sampleY = static_cast<int32_t>(arc.sines[i] * dx + arc.cy + arc.cosines[i] * dy + 0.5);
                uint32_t pixel = DibGetPixel(view, sampleX, sampleY);
                if (pixel == kOutside) pixel = paper;
                red += RedOf(pixel);
                green += GreenOf(pixel);
                blue += BlueOf(pixel);
                count++;
                i += step;
            } while (i < arc.samples);
            DibSetPixel(view, x, y, PackColor(red / count, green / count, blue / count));
        }
    }
}

/// Pixels whose samples are placed together, before any of them is written.
static constexpr int32_t kRun = 64;

/// Places the samples of a run of `count` pixels with the same step: sample k of pixel i lies `offsets[k * kRun + i]`
/// bytes from the first byte of the rows, or outside the picture if that is negative.
/// @return whether one lies outside.
LMF_MULTIVERSION
static bool PlaceSamples(int32_t *__restrict offsets, const Arc &arc, int32_t step, const ReadView &view, int32_t x,
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
            // All ones where a coordinate is outside; the offset is then meaningless, and wraps.
            const uint32_t out = (sampleX < width ? 0u : ~0u) | (sampleY < height ? 0u : ~0u);
            offsets[i] = static_cast<int32_t>(((height - 1 - sampleY) * stride + sampleX * 3) | out);
            outside |= out;
        }
    }
    return outside != 0;
}

/// Blurs `count` pixels of row y, from x on, that share a step. Where samples lie does not depend on the pixels, so all
/// places are computed first; the pixels are then read and written strictly one after the other.
static void BlurRun(const WriteView &view, const Arc &arc, const uint8_t *paper, int32_t step, int32_t x, int32_t count,
                    int32_t y, int32_t *offsets) {
    const bool outside = PlaceSamples(offsets, arc, step, view, x, count, y - arc.cy);
    const int32_t taken = (arc.samples - 1) / step + 1;
    uint8_t *pixel = view.Row(y) + static_cast<int64_t>(x) * 3;
    for (int32_t i = 0; i < count; i++, pixel += 3) {
        PixelSum sum;
        for (int32_t k = 0; k < taken; k++) {
            const int32_t offset = offsets[k * kRun + i];
            sum.Add(outside && offset < 0 ? paper : view.bottom + offset);
        }
        sum.WriteMean(pixel, kReciprocals[static_cast<size_t>(taken)]);
    }
}

/// 24-bit pictures of up to 2 GiB.
static void BlurRows(const WriteView &view, const Arc &arc, Color paper) {
    const uint8_t paperPixel[] = {0, BlueOf(paper), GreenOf(paper), RedOf(paper)};
    int32_t offsets[kMostPixelsOfSum * kRun];
    int32_t steps[kRun];
    for (int32_t y = 0; y < view.height; y++) {
        const double dy = y - arc.cy;
        for (int32_t begin = 0; begin < view.width; begin += kRun) {
            const int32_t part = std::min(kRun, view.width - begin);
            FillSteps(steps, arc, begin, part, dy);
            for (int32_t first = 0, last = 1; first < part; first = last++) {
                while (last < part && steps[last] == steps[first]) last++;
                BlurRun(view, arc, paperPixel + 1, steps[first], begin + first, last - first, y, offsets);
            }
        }
    }
}

static DibHandle RadialBlurKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const WriteView &to = pass.to;
    const Arc arc(to, context.FilterRadialBlurAngle * std::numbers::pi / 180);
    if (!arc) return nullptr;
    DibCopyRect(pass.to, 0, 0, pass.from, 0, 0, to.width, to.height);
    const bool smallEnough = to.stride * to.height <= INT32_MAX && arc.samples <= kMostPixelsOfSum;
    if (to.bits == 24 && smallEnough)
        BlurRows(to, arc, context.paperColor);
    else
        BlurThroughPixels(pass.to, arc, context.paperColor);
    return pass.Finish();
}

extern constexpr Filter kRadialBlur = MakeFilter<kPage>(RadialBlurKernel);

} // namespace lmf
