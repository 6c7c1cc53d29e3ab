// Each blur against a slow form that follows its arithmetic pixel by pixel.
#include <cmath>

#include "image/blur/gaussian.h"
#include "image/blur/pixel_mean.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

const std::vector<Kind> kKinds = {Kind::Color, Kind::Alpha};

constexpr auto ChannelOf = [](uint32_t pixel, int32_t channel) { return pixel >> (8 * channel) & 255; };

/// A bell curve sampled three times a weight from `first` on, with the sum 1.
std::vector<double> BellWeights(int32_t width, int32_t first, double sigma) {
    std::vector<double> weights;
    double sum = 0.0;
    for (int32_t k = 0; k < width; k++) {
        double weight = 0.0;
        for (int32_t i = first + k * 3; i < first + k * 3 + 3; i++)
            weight += std::exp(-(i * i) / (sigma * 18.0 * sigma));
        weights.push_back(weight);
        sum += weight;
    }
    for (double &weight : weights) weight /= sum;
    return weights;
}

/// A line blurred byte by byte; neighbours are `channels` bytes apart.
std::vector<uint8_t> SlowLine(const std::vector<uint8_t> &line, const std::vector<double> &weights, int32_t channels) {
    const auto width = static_cast<int32_t>(weights.size()), half = width / 2;
    const auto count = static_cast<int32_t>(line.size()) / channels;
    std::vector<uint8_t> blurred;
    for (int32_t i = 0; i < count * channels; i++) {
        const int32_t at = i / channels;
        double sum = 0.0, used = 0.0;
        for (int32_t k = 0; k < width; k++) {
            const int32_t tap = at - half + k;
            if (tap < 0 || tap >= count) continue;
            sum += weights[static_cast<size_t>(k)] * line[static_cast<size_t>(tap * channels + i % channels)];
            used += weights[static_cast<size_t>(k)];
        }
        const bool end = at < half || at >= count - half;
        blurred.push_back(static_cast<uint8_t>(end ? (sum + 0.5) / used : sum + 0.5));
    }
    return blurred;
}

/// Rows as bytes, three a pixel at 32 bits as well, then columns as pixels.
LockedDib SlowGaussian(const ReadView &source, const FilterContext &context) {
    LockedDib result(DibClone(source));
    if (context.mode == kModePalette || context.mode == kModeMono) return result;
    const WriteView &to = result.View();
    const int32_t channels = to.bits == 8 ? 1 : 3;
    const int32_t nominal = static_cast<int32_t>(2 * std::ceil(context.FilterGaussianRadius / 10.0)) + 1;
    const int32_t width = std::min({to.width, to.height, nominal});
    const std::vector<double> weights = BellWeights(width, -(3 * width / 2), context.FilterGaussianSigma / 10.0);
    for (int32_t y = 0; y < to.height; y++) {
        const std::vector<uint8_t> line = SlowLine({to.Row(y), to.Row(y) + to.width * channels}, weights, channels);
        std::copy(line.begin(), line.end(), to.Row(y));
    }
    for (int32_t x = 0; x < to.width; x++) {
        std::vector<uint8_t> line;
        for (int32_t i = 0; i < to.height * channels; i++)
            line.push_back(static_cast<uint8_t>(ChannelOf(DibGetPixel(to, x, i / channels), i % channels)));
        line = SlowLine(line, weights, channels);
        for (int32_t y = 0; y < to.height; y++) {
            const uint8_t *value = &line[static_cast<size_t>(y * channels)];
            DibSetPixel(to, x, y, channels == 3 ? PackColor(value[0], value[1], value[2]) : value[0]);
        }
    }
    return result;
}

uint32_t SlowMotion(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t taps = 2 * context.FilterMotionBlurRadius + 1;
    const std::vector<double> weights = BellWeights(taps, 0, context.FilterMotionBlurSigma);
    const double angle = context.FilterMotionBlurAngle * 3.141592653589793 / 180;
    const int ox = static_cast<int>(std::sin(angle) * taps), oy = static_cast<int>(std::cos(angle) * taps);
    const double length = std::sqrt(ox * ox + oy * oy);
    double sums[3] = {};
    for (int32_t i = 0; i < taps; i++) {
        uint32_t pixel = DibGetPixel(from, x + int32_t(i * ox / length), y - int32_t(i * oy / length));
        if (pixel == kOutside) pixel = context.paperColor;
        for (int32_t c = 0; c < 3; c++) sums[c] += weights[static_cast<size_t>(i)] * ChannelOf(pixel, c);
    }
    return (DibGetPixel(from, x, y) & 0xFF000000) | PackColor(uint32_t(sums[0]), uint32_t(sums[1]), uint32_t(sums[2]));
}

uint32_t MeanOf(const Pixels &pixels) {
    uint32_t sums[3] = {};
    for (uint32_t pixel : pixels)
        for (int32_t c = 0; c < 3; c++) sums[c] += ChannelOf(pixel, c);
    const auto count = static_cast<uint32_t>(pixels.size());
    return PackColor(sums[0] / count, sums[1] / count, sums[2] / count);
}

uint32_t SlowZoom(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
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

/// Reads the result as it changes.
LockedDib SlowRadial(const ReadView &source, const FilterContext &context) {
    LockedDib result(DibClone(source));
    const WriteView &to = result.View();
    const double a = context.FilterRadialBlurAngle * 3.141592653589793 / 180;
    const double cx = to.width * 0.5, cy = to.height * 0.5, r = std::sqrt(cx * cx + cy * cy);
    const int n = static_cast<int>(std::abs(std::sqrt(r) * (a * 4.0) + 2.0));
    const double theta = a / (n - 1);
    ForEachPixel(to, [&](int32_t x, int32_t y) {
        const double dx = x - cx, dy = y - cy, rho = std::sqrt(dx * dx + dy * dy);
        const int step = rho != 0 ? std::min(std::max(static_cast<int>(r / rho), 1), n - 1) : 1;
        Pixels pixels;
        for (int i = 0; i < n; i += step) {
            const double phi = i * theta - (n - 1) * theta * 0.5, c = std::cos(phi), s = std::sin(phi);
            const uint32_t pixel = DibGetPixel(to, int(c * dx + cx - s * dy + 0.5), int(s * dx + cy + c * dy + 0.5));
            pixels.push_back(pixel == kOutside ? context.paperColor : pixel);
        }
        DibSetPixel(to, x, y, MeanOf(pixels));
    });
    return result;
}

} // namespace

TEST(GaussianBlur, AgreesWithTheSlowForm) {
    const std::vector<Kind> all = {Kind::Color, Kind::Alpha, Kind::Grey, Kind::Palette, Kind::Mono};
    ExpectDefinition("Gaussian Blur", {all}, SlowGaussian);
    // More taps than are fetched at once, on lines of several parts.
    const Trials wide = {.kinds = {Kind::Color, Kind::Grey},
                         .fixed = {{&P::FilterGaussianRadius, 700}, {&P::FilterGaussianSigma, 100}},
                         .sizes = {{900, 150}},
                         .rounds = 1};
    ExpectDefinition("Gaussian Blur", wide, SlowGaussian);
}

TEST(PixelBlurs, AgreeWithTheirSlowForms) {
    for (int32_t radius : {5, 17, 60}) {
        const Trials trials = {.kinds = kKinds, .fixed = {{&P::FilterMotionBlurRadius, radius}}, .rounds = 1};
        ExpectDefinition("Motion Blur", trials, ByPixel(SlowMotion));
    }
    ExpectDefinition("Zoom Blur", {kKinds}, ByPixel(SlowZoom));
    ExpectDefinition("Radial Blur", {kKinds}, SlowRadial);
}

TEST(PixelMean, TruncatesForAnyNumberOfPixels) {
    const uint8_t bytes[] = {0, 255, 1, 254, 255, 0, 255}; // a byte before the two pixels
    for (int32_t count : {1, 2, 3, 255, 256, 257, 1000}) {
        uint8_t mean[3];
        // One in seven is the second pixel.
        WriteMean(mean, count, [&](int32_t i) { return bytes + 1 + (i % 7 == 6 ? 3 : 0); });
        const int32_t second = count / 7, first = count - second;
        EXPECT_EQ(PackColor(mean[0], mean[1], mean[2]),
                  PackColor(255, uint32_t(first / count), uint32_t((254 * first + 255 * second) / count)));
    }
}

} // namespace lmf::testing
