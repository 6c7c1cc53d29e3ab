#include "adjust/pipeline.h"

#include <algorithm>
#include <utility>

#include "image/resample.h"

namespace lmf {

extern const FilterSlots kNormalize, kColorAndIntensity, kContrastAndBrightness, kHueSaturationBrightness,
    kSigmoidalContrast, kEqualize;

const AdjustStage kAdjustStages[kAdjustStageCount] = {
    {&kNormalize, 104, "Enable normalize"},
    {&kColorAndIntensity, 105, "Enable color and intensity"},
    {&kContrastAndBrightness, 106, "Enable contrast and brightness"},
    {&kHueSaturationBrightness, 107, "Enable hue, saturation and brightness"},
    {&kSigmoidalContrast, 108, "Enable sigmoidal contrast"},
    {&kEqualize, 109, "Enable equalize"},
};

DibHandle AdjustPipeline(DibHandle picture, const AdjustStageSet &stages, FilterContext *context) {
    DibOwner current(picture);
    for (int32_t i = 0; i < kAdjustStageCount; i++) {
        if (!stages.isOn[i]) continue;
        DibOwner changed(kAdjustStages[i].filter->FilterKernel(current.handle, context));
        if (changed) current = std::move(changed);
    }
    return current.Release();
}

AdjustPreview AdjustPreviewBase(DibHandle source, int32_t frameWidth, int32_t frameHeight) {
    int32_t width = 0, height = 0;
    if (!DibInfo(source, &width, &height, nullptr, nullptr)) return {};
    DibOwner base;
    if (width <= frameWidth && height <= frameHeight) {
        base.Reset(DibClone(source));
    } else {
        const auto percent =
            static_cast<int32_t>(std::min(int64_t{frameWidth} * 100 / width, int64_t{frameHeight} * 100 / height));
        base.Reset(DibScalePercent(source, percent, percent, kWindowAutomatic));
    }
    if (!DibInfo(base.handle, &width, &height, nullptr, nullptr)) return {};
    return {base.Release(), (frameWidth - width) / 2, (frameHeight - height) / 2};
}

} // namespace lmf
