#include <cmath>

#include <gtest/gtest.h>

#include "image/blur/gaussian.h"
#include "support/pictures.h"

namespace lmf::testing {

TEST(GaussianKernels, SumThreeSamplesAWeightAndLoseTheLastOfAnEvenWidth) {
    const double sigma = 0.7;
    auto sample = [sigma](int i) { return std::exp(-i * i / (sigma * 18.0 * sigma)); };
    auto triple = [&](int first) { return sample(first) + sample(first + 1) + sample(first + 2); };
    BlurKernel kernel;
    ASSERT_EQ(BuildGaussianKernel(3, sigma, &kernel), 3);
    const double sum = triple(-4) + triple(-1) + triple(2);
    EXPECT_DOUBLE_EQ((*kernel)[0], triple(-4) / sum);
    EXPECT_DOUBLE_EQ((*kernel)[1], triple(-1) / sum);
    EXPECT_DOUBLE_EQ((*kernel)[2], triple(2) / sum);
    ASSERT_EQ(BuildGaussianKernel(2, sigma, &kernel), 2);
    EXPECT_DOUBLE_EQ((*kernel)[0], triple(-3) / (triple(-3) + triple(0)));
    ASSERT_EQ(BuildHalfGaussianKernel(2, sigma, &kernel), 2);
    EXPECT_DOUBLE_EQ((*kernel)[0], triple(0) / (triple(0) + triple(3)));
    EXPECT_EQ(BuildHalfGaussianKernel(0, sigma, &kernel), 3);
}

} // namespace lmf::testing
