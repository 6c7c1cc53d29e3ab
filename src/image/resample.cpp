#include "image/resample.h"

#include <cmath>
#include <math.h>
#include <numbers>

namespace lmf {

using std::numbers::pi;

static double BoxWeight(double x, double) {
    return x >= -0.5 && x < 0.5 ? 1.0 : 0.0;
}

static double TriangleWeight(double x, double) {
    const double a = std::fabs(x);
    return a < 1.0 ? 1.0 - a : 0.0;
}

static double HermiteWeight(double x, double) {
    const double a = std::fabs(x);
    return a < 1.0 ? (2.0 * a - 3.0) * (x * x) + 1.0 : 0.0;
}

static double HanningWeight(double x, double) {
    return 0.5 + 0.5 * std::cos(pi * x);
}

static double HammingWeight(double x, double) {
    return 0.54 + 0.46 * std::cos(pi * x);
}

static double BlackmanWeight(double x, double) {
    return 0.42 + 0.5 * std::cos(pi * x) + 0.08 * std::cos(2.0 * pi * x);
}

static double GaussianWeight(double x, double) {
    return std::sqrt(2.0 / pi) * std::exp(-2.0 * (x * x));
}

static double QuadraticWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 0.5) return 0.75 - x * x;
    return a < 1.5 ? 0.5 * ((a - 1.5) * (a - 1.5)) : 0.0;
}

static double CubicWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return (3.0 * (a * a * a) - 6.0 * (x * x) + 4.0) / 6.0;
    return a < 2.0 ? (2.0 - a) * (2.0 - a) * (2.0 - a) / 6.0 : 0.0;
}

static double CatromWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return (3.0 * (a * a * a) - 5.0 * (x * x) + 2.0) / 2.0;
    return a < 2.0 ? (-(a * a * a) + 5.0 * (x * x) - 8.0 * a + 4.0) / 2.0 : 0.0;
}

/// Mitchell and Netravali (1988) with B = C = 1/3.
static double MitchellWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return x * x * (1.1666666666666667 * a - 2.0) + 0.8888888888888888;
    if (a >= 2.0) return 0.0;
    return 1.7777777777777777 - 3.3333333333333335 * a + 2.0 * (x * x) - 0.3888888888888889 * (a * a * a);
}

static double Sinc(double t) {
    return t == 0.0 ? 1.0 : std::sin(pi * t) / (pi * t);
}

static double LanczosWeight(double x, double) {
    return std::fabs(x) < 3.0 ? Sinc(x) * Sinc(x / 3.0) : 0.0;
}

static double BesselWeight(double x, double support) {
    const double window = BlackmanWeight(x / support, support);
    return x == 0.0 ? pi / 4.0 * window : window * ::j1(pi * x) / (2.0 * x);
}

static double SincWeight(double x, double support) {
    return BlackmanWeight(x / support, support) * Sinc(x);
}

constexpr ResampleWindow kResampleWindows[16] = {
    {BoxWeight, 0.0},       {BoxWeight, 0.0},       {BoxWeight, 0.5},        {TriangleWeight, 1.0},
    {HermiteWeight, 1.0},   {HanningWeight, 1.0},   {HammingWeight, 1.0},    {BlackmanWeight, 1.0},
    {GaussianWeight, 1.25}, {QuadraticWeight, 1.5}, {CubicWeight, 2.0},      {CatromWeight, 2.0},
    {MitchellWeight, 2.0},  {LanczosWeight, 3.0},   {BesselWeight, 3.2383f}, {SincWeight, 4.0},
};

static constexpr int32_t kWindowMitchell = 12;
static constexpr int32_t kWindowLanczos = 13;

struct ContributionEntry {
    double weight;
    int32_t index;
};

/// Fills in what the samples of a line of `size` add to output position `position`.
/// @return how many samples do.
static int32_t Contribute(int32_t position, int32_t size, double factor, const ResampleWindow &window, double blur,
                          ContributionEntry *entries) {
    double scale = std::max(1.0 / factor, 1.0) * blur;
    double support = scale * window.support;
    if (!(support > 0.5)) {
        support = 0.500001;
        scale = 1.0;
    }
    const double inverse = 1.0 / scale;
    const double centre = (position + 0.5) / factor;
    const auto start = static_cast<int32_t>(std::max(centre - support + 0.5, 0.0));
    const auto stop = static_cast<int32_t>(std::min(centre + support + 0.5, static_cast<double>(size)));
    const int32_t count = stop - start;
    double density = 0.0;
    for (int32_t i = 0; i < count; i++) {
        const double weight = window.weight((start + i - centre + 0.5) * inverse, window.support);
        entries[i] = {weight, start + i};
        density += weight;
    }
    if (density != 0.0 && density != 1.0) {
        const double reciprocal = 1.0 / density;
        for (int32_t i = 0; i < count; i++) entries[i].weight *= reciprocal;
    }
    return count;
}

static uint32_t RoundToByte(double value) {
    return value < 0.0 ? 0 : value > 255.0 ? 255 : static_cast<uint32_t>(value + 0.5);
}

/// One pass along x, or along y when `vertical`.
static void ScalePass(const DibLock &from, const DibLock &to, bool vertical, double factor,
                      const ResampleWindow &window, double blur, ContributionEntry *entries) {
    const uint32_t channels = from.view.bits / 8;
    const int32_t size = vertical ? from.view.height : from.view.width;
    const int32_t newSize = vertical ? to.view.height : to.view.width;
    const int32_t lines = vertical ? to.view.width : to.view.height;
    for (int32_t position = 0; position < newSize; position++) {
        const int32_t count = Contribute(position, size, factor, window, blur, entries);
        for (int32_t line = 0; line < lines; line++) {
            double sums[4] = {};
            for (int32_t i = 0; i < count; i++) {
                const uint32_t pixel = vertical ? DibGetPixel(from.image, line, entries[i].index)
                                                : DibGetPixel(from.image, entries[i].index, line);
                for (uint32_t c = 0; c < channels; c++) sums[c] += entries[i].weight * (pixel >> (8 * c) & 0xFF);
            }
            uint32_t value = 0;
            for (uint32_t c = 0; c < channels; c++) value |= RoundToByte(sums[c]) << (8 * c);
            DibSetPixel(to.image, vertical ? line : position, vertical ? position : line, value);
        }
    }
}

DibHandle DibScale(DibHandle source, int32_t newWidth, int32_t newHeight, int32_t windowIndex, double blur) {
    DibLock from(source);
    if (!from || newWidth < 1 || newHeight < 1) return nullptr;
    const int32_t width = from.view.width, height = from.view.height;
    if (newWidth == width && newHeight == height && blur == 1.0)
        return CanReadPixels(from.view.bits) ? DibClone(source) : nullptr;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(newWidth, newHeight, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;

    const double xFactor = std::max(static_cast<double>(newWidth) / width, 0.0001);
    const double yFactor = std::max(static_cast<double>(newHeight) / height, 0.0001);
    int32_t index = std::clamp(windowIndex, 0, 15);
    if (index == kWindowAutomatic) index = xFactor * yFactor > 1.0 ? kWindowMitchell : kWindowLanczos;
    const ResampleWindow &window = kResampleWindows[index];

    const double reach = std::max(std::max(1.0 / xFactor, 1.0) * blur * window.support,
                                  std::max(1.0 / yFactor, 1.0) * blur * window.support);
    const double entryCount = 2.0 * std::max(std::max(reach, window.support), 0.5) + 3.0;
    if (!(entryCount < 4294967296.0)) return nullptr;
    BlockArray<ContributionEntry> entries(static_cast<uint64_t>(entryCount));
    if (!entries) return nullptr;

    const auto u = [](int32_t size) { return static_cast<uint32_t>(size); };
    const bool horizontalFirst = (u(height) + u(newHeight)) * u(newWidth) > (u(width) + u(newWidth)) * u(newHeight);
    DibOwner between(horizontalFirst ? DibCreate(newWidth, height, &palette, from.view.bits)
                                     : DibCreate(width, newHeight, &palette, from.view.bits));
    DibLock middle(between.handle);
    if (!middle) return nullptr;
    const uint32_t bits = from.view.bits;
    if (bits == 8 || bits == 24 || bits == 32) {
        ScalePass(from, middle, !horizontalFirst, horizontalFirst ? xFactor : yFactor, window, blur, entries.data);
        ScalePass(middle, to, horizontalFirst, horizontalFirst ? yFactor : xFactor, window, blur, entries.data);
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibScaleTo(DibHandle source, int32_t newWidth, int32_t newHeight, int32_t windowIndex) {
    return DibScale(source, newWidth, newHeight, windowIndex, 1.0);
}

int32_t RoundToPixels(double length) {
    const double rounded = length + 0.5;
    return rounded >= 1.0 && rounded < 2147483648.0 ? static_cast<int32_t>(rounded) : 0;
}

DibHandle DibScalePercent(DibHandle source, int32_t percentX, int32_t percentY, int32_t windowIndex) {
    int32_t width = 0, height = 0;
    if (!DibInfo(source, &width, &height, nullptr, nullptr)) return nullptr;
    const int32_t newWidth = RoundToPixels(static_cast<double>(width) * percentX / 100.0);
    const int32_t newHeight = RoundToPixels(static_cast<double>(height) * percentY / 100.0);
    return DibScaleTo(source, newWidth, newHeight, windowIndex);
}

int32_t DibFitAspect(DibHandle source, int32_t *width, int32_t *depth) {
    int32_t sourceWidth = 0, sourceHeight = 0;
    if (!DibInfo(source, &sourceWidth, &sourceHeight, nullptr, nullptr)) return 0;
    const double ratio =
        std::min(*width / static_cast<double>(sourceWidth), *depth / static_cast<double>(sourceHeight));
    *width = RoundToPixels(sourceWidth * ratio);
    *depth = RoundToPixels(sourceHeight * ratio);
    return 1;
}

} // namespace lmf
