// Each blur against a slow form that follows its arithmetic pixel by pixel.
#include <cmath>

#include "image/blur/gaussian.h"
#include "support/reference.h"

namespace lmf::testing {

static const std::vector<Kind> kKinds = {Kind::Color, Kind::Alpha};

static uint32_t ChannelOf(uint32_t pixel, int32_t channel) {
    return pixel >> (8 * channel) & 255;
}

/// One pass of the Gaussian blur along rows or columns.
static LockedDib GaussianPass(const ReadView &source, const std::vector<double> &kernel, bool vertical) {
    const ReadView from = source;
    const int32_t width = static_cast<int32_t>(kernel.size()), half = width / 2;
    const int32_t count = vertical ? from.height : from.width;
    return PictureLike(source, [&](int32_t x, int32_t y) {
        const int32_t at = vertical ? y : x;
        uint32_t pixel = 0;
        for (int32_t c = 0; c < (from.bits == 24 ? 3 : 1); c++) {
            double sum = 0.0, used = 0.0;
            for (int32_t k = 0; k < width; k++) {
                const int32_t tap = at - half + k;
                if (tap < 0 || tap >= count) continue;
                sum += kernel[static_cast<size_t>(k)] *
                       ChannelOf(DibGetPixel(from, vertical ? x : tap, vertical ? tap : y), c);
                used += kernel[static_cast<size_t>(k)];
            }
            const bool end = at < half || at >= count - half;
            pixel |= static_cast<uint32_t>(end ? (sum + 0.5) / used : sum + 0.5) << (8 * c);
        }
        return pixel;
    });
}

static LockedDib SlowGaussian(const ReadView &source, const FilterContext &context) {
    if (context.mode == kModePalette || context.mode == kModeMono) return LockedDib(DibClone(source));
    const ReadView lock = source;
    const double nominal = 2 * std::ceil(context.FilterGaussianRadius / 10.0) + 1.0;
    BlurKernel kernel;
    const int32_t width =
        BuildGaussianKernel(std::min(std::min(lock.width, lock.height), static_cast<int32_t>(nominal)),
                            context.FilterGaussianSigma / 10.0, &kernel);
    const std::vector<double> weights(kernel->data, kernel->data + width);
    return GaussianPass(GaussianPass(source, weights, false).handle, weights, true);
}

TEST(GaussianBlur, AgreesWithTheSlowForm) {
    ExpectDefinition("Gaussian Blur", {{Kind::Color, Kind::Grey, Kind::Palette, Kind::Mono}}, SlowGaussian);
}

TEST(GaussianBlur, DirectCallsChooseBytesByDepth) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        const LockedDib picture = RandomPicture(40, 31, mode, 4), direct(GaussianBlurDirect(picture, 70, 23));
        EXPECT_TRUE(SamePicture(direct, RunKernel("Gaussian Blur", picture,
                                                  {{&P::FilterGaussianRadius, 70}, {&P::FilterGaussianSigma, 23}})));
    }
}

static uint32_t SlowMotion(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    BlurKernel kernel;
    const int32_t taps =
        BuildHalfGaussianKernel(2 * context.FilterMotionBlurRadius + 1, context.FilterMotionBlurSigma, &kernel);
    const double angle = context.FilterMotionBlurAngle * 3.141592653589793 / 180;
    const int ox = static_cast<int>(std::sin(angle) * taps), oy = static_cast<int>(std::cos(angle) * taps);
    const double length = std::sqrt(ox * ox + oy * oy);
    double sums[3] = {};
    for (int32_t i = 0; i < taps; i++) {
        uint32_t pixel =
            DibGetPixel(from, x + static_cast<int32_t>(i * ox / length), y - static_cast<int32_t>(i * oy / length));
        if (pixel == kOutside) pixel = context.paperColor;
        for (int32_t c = 0; c < 3; c++) sums[c] += (*kernel)[i] * ChannelOf(pixel, c);
    }
    return (DibGetPixel(from, x, y) & 0xFF000000) |
           PackColor(static_cast<uint32_t>(sums[0]), static_cast<uint32_t>(sums[1]), static_cast<uint32_t>(sums[2]));
}

TEST(MotionBlur, AgreesWithTheSlowForm) {
    for (int32_t radius : {5, 17, 60})
        ExpectDefinition("Motion Blur", {.kinds = kKinds, .fixed = {{&P::FilterMotionBlurRadius, radius}}, .rounds = 1},
                         ByPixel(SlowMotion));
}

TEST(MotionBlur, WithoutARadiusTakesTheWidestKernelWhoseLastWeightCounts) {
    BlurKernel kernel;
    int32_t radius = 1;
    const auto lastWeight = [&](int32_t width) {
        return (void)BuildHalfGaussianKernel(width, MakeContext().FilterMotionBlurSigma, &kernel), (*kernel)[width - 1];
    };
    while (lastWeight(2 * radius + 3) * 255.0 >= 1.0) radius++;
    ASSERT_GT(radius, 10);
    const LockedDib picture = RandomPicture(90, 90, kModeTrueColor, 3);
    EXPECT_TRUE(SamePicture(RunKernel("Motion Blur", picture, {{&P::FilterMotionBlurRadius, 0}}),
                            RunKernel("Motion Blur", picture, {{&P::FilterMotionBlurRadius, radius}})));
}

static uint32_t MeanOf(const Pixels &pixels) {
    uint32_t sums[3] = {};
    for (uint32_t pixel : pixels) {
        for (int32_t c = 0; c < 3; c++) sums[c] += ChannelOf(pixel, c);
    }
    const auto count = static_cast<uint32_t>(pixels.size());
    return PackColor(sums[0] / count, sums[1] / count, sums[2] / count);
}

static uint32_t SlowZoom(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int width = from.width, height = from.height, cx = width / 2, cy = height / 2;
    const auto step = static_cast<float>(context.FilterZoomBlurDisp / 100.0);
    Pixels pixels{DibGetPixel(from, x, y)};
    for (int i = 1; i < context.FilterZoomBlurCycles; i++) {
        const float percent = static_cast<float>(i) * step;
        const double scale = 1.0 - percent / 100.0;
        const int sx = static_cast<int>((static_cast<float>(x) - static_cast<float>(cx)) * scale + cx);
        const int sy = static_cast<int>((static_cast<float>(y) - static_cast<float>(cy)) * scale + cy);
        if (sx < 0 || sx >= width || sy < 0 || sy >= height) break;
        pixels.push_back(DibGetPixel(from, sx, sy));
    }
    return MeanOf(pixels);
}

TEST(ZoomBlur, AgreesWithTheSlowForm) {
    ExpectDefinition("Zoom Blur", {kKinds}, ByPixel(SlowZoom));
}

/// Reads the result as it changes.
static LockedDib SlowRadial(const ReadView &source, const FilterContext &context) {
    LockedDib result(DibClone(source));
    const ReadView to = result;
    const double a = context.FilterRadialBlurAngle * 3.141592653589793 / 180;
    const double cx = to.width * 0.5, cy = to.height * 0.5, r = std::sqrt(cx * cx + cy * cy);
    const int n = static_cast<int>(std::abs(std::sqrt(r) * (a * 4.0) + 2.0));
    const double theta = a / (n - 1);
    ForEachPixel(to, [&](int32_t x, int32_t y) {
        const double dx = x - cx, dy = y - cy, rho = std::sqrt(dx * dx + dy * dy);
        int step = 1;
        if (rho != 0) step = std::min(std::max(static_cast<int>(r / rho), 1), n - 1);
        Pixels pixels;
        for (int i = 0; i < n; i += step) {
            const double phi = i * theta - (n - 1) * theta * 0.5, c = std::cos(phi), s = std::sin(phi);
            const uint32_t pixel = DibGetPixel(to, static_cast<int>(c * dx + cx - s * dy + 0.5),
                                               static_cast<int>(s * dx + cy + c * dy + 0.5));
            pixels.push_back(pixel == kOutside ? context.paperColor : pixel);
        }
        DibSetPixel(to, x, y, MeanOf(pixels));
    });
    to.Unlock();
    return result;
}

TEST(RadialBlur, AgreesWithTheSlowForm) {
    ExpectDefinition("Radial Blur", {kKinds}, SlowRadial);
}

} // namespace lmf::testing
