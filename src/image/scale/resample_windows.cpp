// The windows of the filtered scaler.
#include <cmath>
#include <math.h>
#include <numbers>

#include "image/scale/resample.h"

namespace lmf {

using std::numbers::pi;

namespace {

double BoxWeight(double x, double) {
    return x >= -0.5 && x < 0.5 ? 1.0 : 0.0;
}

double TriangleWeight(double x, double) {
    const double a = std::fabs(x);
    return a < 1.0 ? 1.0 - a : 0.0;
}

double HermiteWeight(double x, double) {
    const double a = std::fabs(x);
    return a < 1.0 ? (2.0 * a - 3.0) * (x * x) + 1.0 : 0.0;
}

double HanningWeight(double x, double) {
    return 0.5 + 0.5 * std::cos(pi * x);
}

double HammingWeight(double x, double) {
    return 0.54 + 0.46 * std::cos(pi * x);
}

double BlackmanWeight(double x, double) {
    return 0.42 + 0.5 * std::cos(pi * x) + 0.08 * std::cos(2.0 * pi * x);
}

double GaussianWeight(double x, double) {
    return std::sqrt(2.0 / pi) * std::exp(-2.0 * (x * x));
}

double QuadraticWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 0.5) return 0.75 - x * x;
    return a < 1.5 ? 0.5 * ((a - 1.5) * (a - 1.5)) : 0.0;
}

double CubicWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return (3.0 * (a * a * a) - 6.0 * (x * x) + 4.0) / 6.0;
    return a < 2.0 ? (2.0 - a) * (2.0 - a) * (2.0 - a) / 6.0 : 0.0;
}

double CatromWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return (3.0 * (a * a * a) - 5.0 * (x * x) + 2.0) / 2.0;
    return a < 2.0 ? (-(a * a * a) + 5.0 * (x * x) - 8.0 * a + 4.0) / 2.0 : 0.0;
}

/// Mitchell and Netravali (1988) with B = C = 1/3.
double MitchellWeight(double x, double) {
    const double a = std::fabs(x);
    if (a < 1.0) return x * x * (1.1666666666666667 * a - 2.0) + 0.8888888888888888;
    if (a >= 2.0) return 0.0;
    return 1.7777777777777777 - 3.3333333333333335 * a + 2.0 * (x * x) - 0.3888888888888889 * (a * a * a);
}

double Sinc(double t) {
    return t == 0.0 ? 1.0 : std::sin(pi * t) / (pi * t);
}

double LanczosWeight(double x, double) {
    return std::fabs(x) < 3.0 ? Sinc(x) * Sinc(x / 3.0) : 0.0;
}

double BesselWeight(double x, double support) {
    const double window = BlackmanWeight(x / support, support);
    return x == 0.0 ? pi / 4.0 * window : window * ::j1(pi * x) / (2.0 * x);
}

double SincWeight(double x, double support) {
    return BlackmanWeight(x / support, support) * Sinc(x);
}

} // namespace

constexpr ResampleWindow kResampleWindows[16] = {
    {BoxWeight, 0.0},       {BoxWeight, 0.0},       {BoxWeight, 0.5},        {TriangleWeight, 1.0},
    {HermiteWeight, 1.0},   {HanningWeight, 1.0},   {HammingWeight, 1.0},    {BlackmanWeight, 1.0},
    {GaussianWeight, 1.25}, {QuadraticWeight, 1.5}, {CubicWeight, 2.0},      {CatromWeight, 2.0},
    {MitchellWeight, 2.0},  {LanczosWeight, 3.0},   {BesselWeight, 3.2383f}, {SincWeight, 4.0},
};

} // namespace lmf
