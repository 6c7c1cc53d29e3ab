// Each blur against a slow form that follows its arithmetic pixel by pixel, and a few results worked out by hand.
#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "filters/neighbourhood/gaussian.h"
#include "support/pictures.h"

namespace lmf::testing {

using Line = std::vector<double>;

static DibOwner CopyOf(DibHandle picture) {
    return DibOwner(DibClone(picture));
}

/// Calls `change` with each pixel's place and stores what it returns; it sees `result` as it changes.
static DibOwner Filtered(DibHandle source, const std::function<uint32_t(void *result, int32_t x, int32_t y)> &change) {
    DibOwner result = CopyOf(source);
    DibLock lock(result.handle);
    for (int32_t y = 0; y < lock.view.height; y++) {
        for (int32_t x = 0; x < lock.view.width; x++) DibSetPixel(lock.image, x, y, change(lock.image, x, y));
    }
    lock.Unlock();
    return result;
}

static uint32_t ChannelOf(uint32_t pixel, int32_t channel) {
    return pixel >> (8 * channel) & 255;
}

/// One pass of the Gaussian blur along rows or columns.
static DibOwner GaussianPass(DibHandle source, const Line &kernel, bool vertical) {
    DibLock from(source);
    const int32_t width = static_cast<int32_t>(kernel.size()), half = width / 2;
    const int32_t count = vertical ? from.view.height : from.view.width;
    return Filtered(source, [&](void *, int32_t x, int32_t y) {
        const int32_t at = vertical ? y : x;
        uint32_t pixel = 0;
        for (int32_t c = 0; c < (from.view.bits == 24 ? 3 : 1); c++) {
            double sum = 0.0, used = 0.0;
            for (int32_t k = 0; k < width; k++) {
                const int32_t tap = at - half + k;
                if (tap < 0 || tap >= count) continue;
                sum += kernel[static_cast<size_t>(k)] *
                       ChannelOf(DibGetPixel(from.image, vertical ? x : tap, vertical ? tap : y), c);
                used += kernel[static_cast<size_t>(k)];
            }
            const bool end = at < half || at >= count - half;
            pixel |= static_cast<uint32_t>(end ? (sum + 0.5) / used : sum + 0.5) << (8 * c);
        }
        return pixel;
    });
}

static DibOwner SlowGaussian(DibHandle source, const FilterContext &context) {
    DibLock lock(source);
    const double nominal = 2 * std::ceil(context.FilterGaussianRadius / 10.0) + 1.0;
    BlurKernel kernel;
    const int32_t width =
        BuildGaussianKernel(std::min(std::min(lock.view.width, lock.view.height), static_cast<int32_t>(nominal)),
                            context.FilterGaussianSigma / 10.0, &kernel);
    const Line weights(kernel->data, kernel->data + width);
    return GaussianPass(GaussianPass(source, weights, false).handle, weights, true);
}

struct Case {
    int32_t width, height;
};
static constexpr Case kSizes[] = {{1, 1},  {2, 1},   {1, 7},    {2, 2},    {3, 5},    {6, 100},
                                  {17, 9}, {64, 64}, {131, 40}, {200, 33}, {86, 200}, {300, 70}};

static int32_t Between(int32_t low, int32_t high, uint32_t *state) {
    return low + static_cast<int32_t>((TestRandom(state) >> 8) % static_cast<uint32_t>(high - low + 1));
}

using SlowFilter = DibOwner (*)(DibHandle, const FilterContext &);
using Randomise = void (*)(FilterContext *, uint32_t *state);

static void ExpectSame(const char *filter, std::initializer_list<ImageMode> modes, Randomise randomise,
                       SlowFilter slow) {
    uint32_t state = 77;
    for (ImageMode mode : modes) {
        for (const Case &size : kSizes) {
            for (int round = 0; round < 4; round++) {
                DibOwner picture = RandomPicture(size.width, size.height, mode, TestRandom(&state));
                FilterContext context = MakeContext(mode);
                context.paperColor = TestRandom(&state) & 0xFFFFFF;
                randomise(&context, &state);
                DibOwner fast = RunKernel(filter, picture.handle, &context);
                EXPECT_TRUE(SamePicture(fast.handle, slow(picture.handle, context).handle))
                    << filter << ' ' << size.width << 'x' << size.height << " mode " << mode << " round " << round;
            }
        }
    }
}

TEST(GaussianBlur, AgreesWithTheSlowForm) {
    ExpectSame(
        "Gaussian Blur", {kModeTrueColor, kModeGrey},
        [](FilterContext *context, uint32_t *state) {
            context->FilterGaussianRadius = Between(10, Between(20, 990, state), state);
            context->FilterGaussianSigma = Between(10, 100, state);
        },
        SlowGaussian);
}

static DibOwner SlowMotion(DibHandle source, const FilterContext &context) {
    BlurKernel kernel;
    const double sigma = context.FilterMotionBlurSigma;
    const int32_t taps = BuildHalfGaussianKernel(2 * context.FilterMotionBlurRadius + 1, sigma, &kernel);
    const double angle = context.FilterMotionBlurAngle * 3.141592653589793 / 180;
    const int ox = static_cast<int>(std::sin(angle) * taps), oy = static_cast<int>(std::cos(angle) * taps);
    const double length = std::sqrt(ox * ox + oy * oy);
    DibLock from(source);
    return Filtered(source, [&](void *, int32_t x, int32_t y) {
        double sums[3] = {};
        for (int32_t i = 0; i < taps; i++) {
            uint32_t pixel = DibGetPixel(from.image, x + static_cast<int32_t>(i * ox / length),
                                         y - static_cast<int32_t>(i * oy / length));
            if (pixel == kOutside) pixel = context.paperColor;
            for (int32_t c = 0; c < 3; c++) sums[c] += (*kernel)[i] * ChannelOf(pixel, c);
        }
        return PackColor(static_cast<uint32_t>(sums[0]), static_cast<uint32_t>(sums[1]),
                         static_cast<uint32_t>(sums[2]));
    });
}

TEST(MotionBlur, AgreesWithTheSlowForm) {
    ExpectSame(
        "Motion Blur", {kModeTrueColor},
        [](FilterContext *context, uint32_t *state) {
            context->FilterMotionBlurRadius = Between(5, Between(5, 60, state), state);
            context->FilterMotionBlurSigma = Between(5, 50, state);
            context->FilterMotionBlurAngle = Between(0, 359, state);
        },
        SlowMotion);
}

TEST(MotionBlur, TrailsUpAtAngle0AndRightAtAngle90) {
    DibOwner picture = MakePicture(9, 9, 24);
    DibLock lock(picture.handle);
    DibSetPixel(lock.image, 4, 4, 0xFFFFFF);
    FilterContext context = MakeContext();
    context.paperColor = 0;
    for (int32_t angle : {0, 90}) {
        context.FilterMotionBlurAngle = angle;
        DibOwner result = RunKernel("Motion Blur", picture.handle, &context);
        DibLock blurred(result.handle);
        // A pixel gathers from where the trail leads: the light reaches those below it, or to its left.
        EXPECT_GT(DibGetPixel(blurred.image, angle ? 0 : 4, angle ? 4 : 8), 0u);
        EXPECT_EQ(DibGetPixel(blurred.image, angle ? 5 : 4, angle ? 4 : 3), 0u);
    }
}

static uint32_t MeanOf(const std::vector<uint32_t> &pixels) {
    uint32_t sums[3] = {};
    for (uint32_t pixel : pixels) {
        for (int32_t c = 0; c < 3; c++) sums[c] += ChannelOf(pixel, c);
    }
    const auto count = static_cast<uint32_t>(pixels.size());
    return PackColor(sums[0] / count, sums[1] / count, sums[2] / count);
}

static DibOwner SlowZoom(DibHandle source, const FilterContext &context) {
    DibLock from(source);
    const int width = from.view.width, height = from.view.height, cx = width / 2, cy = height / 2;
    const auto step = static_cast<float>(context.FilterZoomBlurDisp / 100.0);
    return Filtered(source, [&](void *, int32_t x, int32_t y) {
        std::vector<uint32_t> pixels{DibGetPixel(from.image, x, y)};
        for (int i = 1; i < context.FilterZoomBlurCycles; i++) {
            const float percent = static_cast<float>(i) * step;
            const double scale = 1.0 - percent / 100.0;
            const int sx = static_cast<int>((static_cast<float>(x) - static_cast<float>(cx)) * scale + cx);
            const int sy = static_cast<int>((static_cast<float>(y) - static_cast<float>(cy)) * scale + cy);
            if (sx < 0 || sx >= width || sy < 0 || sy >= height) break;
            pixels.push_back(DibGetPixel(from.image, sx, sy));
        }
        return MeanOf(pixels);
    });
}

TEST(ZoomBlur, AgreesWithTheSlowForm) {
    ExpectSame(
        "Zoom Blur", {kModeTrueColor},
        [](FilterContext *context, uint32_t *state) {
            context->FilterZoomBlurDisp = Between(100, 1000, state);
            context->FilterZoomBlurCycles = Between(4, 40, state);
        },
        SlowZoom);
}

static DibOwner SlowRadial(DibHandle source, const FilterContext &context) {
    int32_t width = 0, height = 0;
    DibInfo(source, &width, &height, nullptr, nullptr);
    const double a = context.FilterRadialBlurAngle * 3.141592653589793 / 180;
    const double cx = width * 0.5, cy = height * 0.5, r = std::sqrt(cx * cx + cy * cy);
    const int n = static_cast<int>(std::abs(std::sqrt(r) * (a * 4.0) + 2.0));
    const double theta = a / (n - 1);
    return Filtered(source, [&](void *result, int32_t x, int32_t y) {
        const double dx = x - cx, dy = y - cy, rho = std::sqrt(dx * dx + dy * dy);
        int step = 1;
        if (rho != 0) step = std::min(std::max(static_cast<int>(r / rho), 1), n - 1);
        std::vector<uint32_t> pixels;
        for (int i = 0; i < n; i += step) {
            const double phi = i * theta - (n - 1) * theta * 0.5, c = std::cos(phi), s = std::sin(phi);
            const uint32_t pixel = DibGetPixel(result, static_cast<int>(c * dx + cx - s * dy + 0.5),
                                               static_cast<int>(s * dx + cy + c * dy + 0.5));
            pixels.push_back(pixel == kOutside ? context.paperColor : pixel);
        }
        return MeanOf(pixels);
    });
}

TEST(RadialBlur, AgreesWithTheSlowForm) {
    ExpectSame(
        "Radial Blur", {kModeTrueColor},
        [](FilterContext *context, uint32_t *state) { context->FilterRadialBlurAngle = Between(1, 45, state); },
        SlowRadial);
}

TEST(MotionBlur, WithoutARadiusTakesTheWidestKernelWhoseLastWeightCounts) {
    FilterContext context = MakeContext();
    BlurKernel kernel;
    int32_t radius = 1;
    const auto lastWeight = [&](int32_t width) {
        return (void)BuildHalfGaussianKernel(width, context.FilterMotionBlurSigma, &kernel), (*kernel)[width - 1];
    };
    while (lastWeight(2 * radius + 3) * 255.0 >= 1.0) radius++;
    ASSERT_GT(radius, 10);
    DibOwner picture = RandomPicture(90, 90, kModeTrueColor, 3);
    context.FilterMotionBlurRadius = 0;
    DibOwner automatic = RunKernel("Motion Blur", picture.handle, &context);
    context.FilterMotionBlurRadius = radius;
    EXPECT_TRUE(SamePicture(automatic.handle, RunKernel("Motion Blur", picture.handle, &context).handle));
}

TEST(GaussianBlur, KeepsFlatPicturesAndPicturesOfOtherModes) {
    DibOwner flat(DibCreateSolid(90, 40, 0xFF8001));
    EXPECT_TRUE(SamePicture(RunKernel("Gaussian Blur", flat.handle).handle, flat.handle));
    for (ImageMode mode : {kModePalette, kModeMono}) {
        DibOwner picture = RandomPicture(33, 9, mode, 2);
        EXPECT_TRUE(SamePicture(RunKernel("Gaussian Blur", picture.handle).handle, picture.handle));
    }
}

TEST(GaussianBlur, DirectCallsChooseBytesByDepth) {
    FilterContext context = MakeContext();
    context.FilterGaussianRadius = 70;
    context.FilterGaussianSigma = 23;
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        DibOwner picture = RandomPicture(40, 31, mode, 4);
        DibOwner direct(GaussianBlurDirect(picture.handle, 70, 23));
        EXPECT_TRUE(SamePicture(direct.handle, RunKernel("Gaussian Blur", picture.handle, &context).handle));
    }
}

TEST(Blurs, GivePicturesWithAlphaTheSameColours) {
    DibOwner picture = RandomPicture(70, 45, kModeTrueColor, 9);
    DibOwner deep = MakePicture(70, 45, 32, PixelsOf(picture.handle));
    for (const char *filter : {"Motion Blur", "Radial Blur", "Zoom Blur", "Average"})
        EXPECT_EQ(PixelsOf(RunKernel(filter, deep.handle).handle), PixelsOf(RunKernel(filter, picture.handle).handle))
            << filter;
}

} // namespace lmf::testing
