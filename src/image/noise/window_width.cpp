#include "image/noise/window_width.h"

#include <cmath>

namespace lmf {

/// Weight of the outermost of n samples of a Gaussian whose weights add up to 255.
static double OutermostWeight(int32_t n, double sigma) {
    const int32_t half = n / 2;
    double sum = 0;
    for (int32_t i = -half; i <= half; i++) sum += std::exp(-(i * i) / (2 * sigma * sigma));
    return std::exp(-(half * half) / (2 * sigma * sigma)) / sum * 255.0;
}

int32_t WindowWidth(double radius, double sigma) {
    if (radius > 0) return static_cast<int32_t>(2 * std::ceil(radius) + 1.0);
    int32_t n = 5;
    while (OutermostWeight(n, sigma) >= 1) n += 2;
    return n - 2;
}

} // namespace lmf
