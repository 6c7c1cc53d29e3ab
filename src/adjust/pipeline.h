// The chain of six tone filters behind Adjust. It needs no window: a picture, six switches and the filters' parameters.
#pragma once

#include "engine/catalogue.h"

namespace lmf {

inline constexpr int32_t kAdjustStageCount = 6;

struct AdjustStage {
    int32_t row;      ///< of the catalogue
    int32_t switchId; ///< control that enables the stage
    const char *switchText;
};

/// The stages in the order in which they run.
extern const AdjustStage kAdjustStages[kAdjustStageCount];

/// Which stages run, by their place in kAdjustStages; none at first.
struct AdjustStageSet {
    bool isOn[kAdjustStageCount] = {};
};

/// Runs the enabled stages one after the other. A stage that fails leaves the picture as it was.
/// @param picture  of 24 or 32 bits; this function frees it once a stage has replaced it
/// @param context  the filters' parameters
/// @return the last picture, owned by the caller; `picture` itself where no stage replaced it.
[[nodiscard]] DibHandle AdjustPipeline(DibHandle picture, const AdjustStageSet &stages, FilterContext &context);

/// The picture that previews run on, and where it stands in its frame.
struct AdjustPreview {
    DibHandle base = nullptr; ///< owned by whoever asked; null where it could not be made
    int32_t x = 0, y = 0;     ///< of the base's corner in the frame, pixels
};

/// A copy of the source, reduced to whole percents where it is larger than a frame of these inner sizes.
[[nodiscard]] AdjustPreview AdjustPreviewBase(const ReadView &source, int32_t frameWidth, int32_t frameHeight);

} // namespace lmf
