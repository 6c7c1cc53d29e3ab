// Red-eye Reduction: finds eyes with the face finder beside the library and takes the red out of pupils that a flash
// has lit. Threshold is how much stronger than green and blue the red must be to count, in thousandths.
#include <algorithm>

#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "overlays/face_list.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(730, "Threshold:", &P::FilterRRedeyeThreshold, {250, 2250})
        .Help("How far red must stand out for a pixel of an eye to count, in thousandths of the other colors."),
};

/// Is red so much stronger than the mean of the others? A grey pixel has the ratio 0.25. Beside almost no green and
/// blue there is nothing to compare with, and the pixel is left alone. All in single precision but for the threshold.
bool IsRed(const uint8_t *bgr, double threshold) {
    const float blue = static_cast<float>(bgr[0]) / 255.0f, green = static_cast<float>(bgr[1]) / 255.0f;
    const float red = static_cast<float>(bgr[2]) / 255.0f;
    if (std::max(green, blue) <= 0.006f) return false;
    return red / (green + blue) * 0.5f > threshold;
}

/// Gives red pixels of a row the mean of green and blue for their red.
void CorrectRow(uint8_t *bgr, int32_t width, double threshold) {
    for (const uint8_t *end = bgr + static_cast<ptrdiff_t>(width) * 3; bgr < end; bgr += 3)
        if (IsRed(bgr, threshold)) bgr[2] = static_cast<uint8_t>((bgr[0] + bgr[1]) / 2);
}

DibHandle RedEyeReductionKernel(const ReadView &source, FilterContext &context) {
    const FaceRecords eyes(context.RedeyeList, FaceRecords::Eyes);
    if (!eyes) return nullptr;
    LockedDib result(DibToRgb(source));
    if (!result) return nullptr;
    const double threshold = context.FilterRRedeyeThreshold / 1000.0;
    for (const FaceRecord &eye : eyes.Get()) {
        const int32_t left = std::max(eye.left, 0), right = std::min(eye.right, source.width);
        const int32_t bottom = std::min(eye.bottom, source.height);
        for (int32_t y = std::max(eye.top, 0); y < bottom && left < right; y++)
            CorrectRow(result.View().Row(y) + static_cast<ptrdiff_t>(left) * 3, right - left, threshold);
    }
    return result.Release();
}

void PrepareRedEyeReduction(FilterContext &context, uint32_t phase) {
    PrepareFaceList(context, phase, &FilterContext::RedeyeList, true);
}

} // namespace

extern constexpr Filter kRedEyeReduction =
    MakeFilter<kPage>(RedEyeReductionKernel, {.FilterPrepare = PrepareRedEyeReduction});

} // namespace lmf
