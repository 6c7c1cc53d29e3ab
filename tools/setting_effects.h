// Which settings do something, and when, beyond what the pages grey out: what a window's user sees at once has to be
// told to those who only type.
#pragma once

#include "engine/page.h"
#include "lmf16filter.h"

namespace lmf {

/// A setting that does nothing unless another one has some value, on a page that leaves its control usable.
struct EffectRule {
    NumberField setting;
    EnableRule rule; ///< its control is not used
};

inline constexpr EffectRule kEffectRules[] = {
    {&P::FilterConvertToMonoThreshold, EnabledWhileOff(0, &P::FilterConvertToMonoDither)},
    {&P::FilterImpactOutlineColor, EnabledWhileOn(0, &P::FilterImpactOutlineEnable)},
    {&P::FilterMattSize, EnabledWhileOff(0, &P::FilterMattAbsolute)},
    {&P::FilterMattWidth, EnabledWhileOn(0, &P::FilterMattAbsolute)},
    {&P::FilterMattDepth, EnabledWhileOn(0, &P::FilterMattAbsolute)},
    {&P::FilterPhotoAdjTemp, EnabledWhileOn(0, &P::FilterPhotoAdjEnableTemp)},
    {&P::FilterPhotoAdjTint, EnabledWhileOn(0, &P::FilterPhotoAdjEnableTint)},
    {&P::FilterPhotoAdjSat, EnabledWhileOn(0, &P::FilterPhotoAdjEnableSat)},
    {&P::FilterPhotoAdjCont, EnabledWhileOn(0, &P::FilterPhotoAdjEnableCont)},
    {&P::FilterPhotoAdjBright, EnabledWhileOn(0, &P::FilterPhotoAdjEnableBright)},
    {&P::FilterPhotoAdjHighlight, EnabledWhileOn(0, &P::FilterPhotoAdjEnableHighlight)},
    {&P::FilterPhotoAdjShadow, EnabledWhileOn(0, &P::FilterPhotoAdjEnableShadow)},
    {&P::FilterPhotoAdjMidtone, EnabledWhileOn(0, &P::FilterPhotoAdjEnableMidtone)},
    {&P::FilterRotateShear, EnabledWhileOn(0, &P::FilterRotateInterpolate)},
    {&P::FilterSplitRemove, {0, &P::FilterSplitMode, 1u << 6 | 1u << 7 | 1u << 8 | 1u << 9}},
    {&P::FilterTrimTol, EnabledAt(0, &P::FilterTrimMode, 0)},
    {&P::FilterTrimSize, EnabledAt(0, &P::FilterTrimMode, 1)},
    {&P::FilterTrimPercent, EnabledAt(0, &P::FilterTrimMode, 2)},
    {&P::FilterWaterEnergy, EnabledWhileOn(0, &P::FilterWaterDissipate)},
};

/// A setting of a page that its filter passes over in favour of another page's.
struct BorrowedSetting {
    int32_t row;
    NumberField idle, used;
};

inline constexpr BorrowedSetting kBorrowedSettings[] = {
    {LMF_FILTER_SHARPEN, &P::FilterSharpenWidth, &P::FilterEmbossWidth},
    {LMF_FILTER_SHARPEN, &P::FilterSharpenSigma, &P::FilterEmbossSigma},
    {LMF_FILTER_UNSHARP_MASK, &P::FilterUnsharpSigma, &P::FilterGaussianSigma},
    {LMF_FILTER_UNSHARP_MASK, &P::FilterUnsharpRadius, &P::FilterGaussianRadius},
};

/// A setting that starts with something of the picture in place of its default.
struct PictureStart {
    NumberField setting;
    const char *text;
};

inline constexpr PictureStart kPictureStarts[] = {
    {&P::FilterCropRight, "the picture's width less 1"},
    {&P::FilterCropBottom, "the picture's height less 1"},
    {&P::FilterMattWidth, "the picture's width"},
    {&P::FilterMattDepth, "the picture's height"},
};

} // namespace lmf
