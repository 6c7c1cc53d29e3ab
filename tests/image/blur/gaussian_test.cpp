#include <gtest/gtest.h>

#include "image/blur/gaussian.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// The weights as the builder left them; nothing where it failed.
template <typename Builder>
std::vector<double> Weights(Builder build, int32_t width, double sigma) {
    BlurKernel kernel;
    if (build(width, sigma, &kernel) != width) return {};
    return {kernel->data, kernel->data + width};
}

void ExpectNear(const std::vector<double> &weights, const std::vector<double> &expected) {
    ASSERT_EQ(weights.size(), expected.size());
    for (size_t i = 0; i < weights.size(); i++) EXPECT_NEAR(weights[i], expected[i], 5e-7) << i;
}

} // namespace

TEST(GaussianKernels, SumThreeSamplesAWeightAndLoseTheLastOfAnEvenWidth) {
    // At sigma 1 sample i is exp(-i * i / 18). Three to a weight from the middle: 1 + 2 * 0.945959 = 2.891919, then
    // 0.800737 + 0.606531 + 0.411112 = 1.818380; all together 6.528679.
    ExpectNear(Weights(BuildGaussianKernel, 1, 1.0), {1});
    ExpectNear(Weights(BuildGaussianKernel, 3, 1.0), {0.2785219, 0.4429562, 0.2785219});
    ExpectNear(Weights(BuildGaussianKernel, 2, 1.0), {0.4614240, 0.5385760});
    ExpectNear(Weights(BuildGaussianKernel, 4, 0.5), {0.0087156, 0.3583350, 0.5883255, 0.0446239});
    ExpectNear(Weights(BuildHalfGaussianKernel, 2, 1.0), {0.6843317, 0.3156683});
    ExpectNear(Weights(BuildHalfGaussianKernel, 3, 0.7), {0.8072572, 0.1858933, 0.0068495});
}

TEST(GaussianBlur, DirectCallsChooseBytesByDepth) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        const LockedDib picture = RandomPicture(40, 31, mode, 4), direct(GaussianBlurDirect(picture, 70, 23));
        EXPECT_TRUE(SamePicture(direct, RunKernel("Gaussian Blur", picture,
                                                  {{&P::FilterGaussianRadius, 70}, {&P::FilterGaussianSigma, 23}})));
    }
    for (uint32_t bits : {1u, 4u}) {
        const LockedDib picture = RandomDepth(9, 7, bits, 5);
        EXPECT_TRUE(SamePicture(LockedDib(GaussianBlurDirect(picture, 70, 23)), picture));
    }
}

} // namespace lmf::testing
