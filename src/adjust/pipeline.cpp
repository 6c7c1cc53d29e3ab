#include "adjust/pipeline.h"

#include <algorithm>
#include <utility>

#include "engine/apply.h"
#include "image/scale/resample.h"

namespace lmf {

const AdjustStage kAdjustStages[kAdjustStageCount] = {
    {LMF_FILTER_NORMALIZE, 104, "Enable normalize"},
    {LMF_FILTER_COLOR_AND_INTENSITY, 105, "Enable color and intensity"},
    {LMF_FILTER_CONTRAST_AND_BRIGHTNESS, 106, "Enable contrast and brightness"},
    {LMF_FILTER_HUE_SATURATION_BRIGHTNESS, 107, "Enable hue, saturation and brightness"},
    {LMF_FILTER_SIGMOIDAL_CONTRAST, 108, "Enable sigmoidal contrast"},
    {LMF_FILTER_EQUALIZE, 109, "Enable equalize"},
};

DibHandle AdjustPipeline(DibHandle picture, const AdjustStageSet &stages, FilterContext &context) {
    LockedDib current(picture);
    for (int32_t i = 0; i < kAdjustStageCount; i++) {
        if (!stages.isOn[i] || !current) continue;
        LockedDib changed(RunFilter(kAdjustStages[i].row, current, kModeTrueColor, context));
        if (changed) current = std::move(changed);
    }
    current.lock.Unlock();
    return current.owner.Release();
}

AdjustPreview AdjustPreviewBase(const ReadView &source, int32_t frameWidth, int32_t frameHeight) {
    LockedDib base;
    if (source.width <= frameWidth && source.height <= frameHeight) {
        base = LockedDib(DibClone(source));
    } else {
        const auto percent = static_cast<int32_t>(
            std::min(int64_t{frameWidth} * 100 / source.width, int64_t{frameHeight} * 100 / source.height));
        base = LockedDib(DibScalePercent(source, percent, percent, kWindowAutomatic));
    }
    if (!base) return {};
    const int32_t x = (frameWidth - base.View().width) / 2, y = (frameHeight - base.View().height) / 2;
    return {base.Release(), x, y};
}

} // namespace lmf
