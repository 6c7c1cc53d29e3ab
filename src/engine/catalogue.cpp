#include "engine/catalogue.h"

namespace lmf {

enum Category : int32_t { kArtistic, kBlur, kColor, kEffect, kImage, kNoise, kPhotographic, kQuality };

// One line a filter: slots, name, category, flags, page id, item id. The order is the interface: hosts use row numbers.
// clang-format off
#define LMF_CATALOGUE(X) \
    X(kAddAlpha, "Add Alpha", kImage, 0x29081, 9000, 0) \
    X(kAddNoise, "Add noise", kNoise, 0x08083, 9001, 1) \
    X(kAlphaShadow, "Alpha shadow", kPhotographic, 0x29480, 9002, 2) \
    X(kAverage, "Average", kQuality, 0x08083, 9003, 3) \
    X(kBayerDither, "Bayer Dither", kEffect, 0x08187, 9004, 4) \
    X(kBigScreen, "Big Screen", kEffect, 0x08081, 9005, 5) \
    X(kBlackThreshold, "Black Threshold", kPhotographic, 0x08083, 9006, 6) \
    X(kBump, "Bump", kArtistic, 0x08083, 9007, 7) \
    X(kCanvas, "Canvas", kArtistic, 0x08081, 9008, 8) \
    X(kCaption, "Caption", kPhotographic, 0x2C0CF, 9009, 9) \
    X(kChannels, "Channels", kImage, 0x08081, 9010, 10) \
    X(kColorAndIntensity, "Color and Intensity", kColor, 0x280A5, 9011, 12) \
    X(kContrastAndBrightness, "Contrast and Brightness", kColor, 0x280A7, 9012, 13) \
    X(kConvertTo256Colors, "Convert to 256 Colors", kImage, 0x2B10B, 9013, 14) \
    X(kConvertToGrey, "Convert to Grey", kImage, 0x2B10D, 9014, 15) \
    X(kConvertToMono, "Convert to Mono", kImage, 0x2B087, 9015, 16) \
    X(kConvertToRGB, "Convert to RGB", kImage, 0x2B08E, 9016, 17) \
    X(kCorners, "Corners", kEffect, 0x080C1, 9017, 18) \
    X(kCrop, "Crop", kImage, 0x3A04F, 9018, 19) \
    X(kDespeckle, "Despeckle", kNoise, 0x08081, 9019, 20) \
    X(kEdgeTraceAndFatten, "Edge Trace and Fatten", kArtistic, 0x28088, 9020, 21) \
    X(kEmboss, "Emboss", kArtistic, 0x08083, 9021, 22) \
    X(kEdgeEnhancement, "Edge Enhancement", kQuality, 0x08083, 9022, 23) \
    X(kEqualize, "Equalize", kPhotographic, 0x08083, 9023, 24) \
    X(kExplode, "Explode", kEffect, 0x08023, 9024, 25) \
    X(kFaceDetection, "Face Detection", kEffect, 0x28001, 9025, 26) \
    X(kFade, "Fade", kEffect, 0x08081, 9026, 27) \
    X(kFilmGrain, "Film Grain", kEffect, 0x08081, 9090, 28) \
    X(kFlip, "Flip", kImage, 0x2C01F, 9027, 29) \
    X(kFrame, "Frame", kImage, 0x08091, 9028, 30) \
    X(kGamma, "Gamma", kPhotographic, 0x08087, 9029, 31) \
    X(kGaussianBlur, "Gaussian Blur", kBlur, 0x08083, 9030, 32) \
    X(kGlassBlock, "Glass Block", kArtistic, 0x08083, 9031, 33) \
    X(kHalftone, "Halftone", kArtistic, 0x08091, 9032, 34) \
    X(kHexagon, "Hexagon", kEffect, 0x08081, 9091, 35) \
    X(kHueSaturationBrightness, "Hue Saturation Brightness", kColor, 0x08081, 9033, 36) \
    X(kImpact, "Impact", kEffect, 0x08021, 9093, 37) \
    X(kImplode, "Implode", kEffect, 0x08023, 9034, 38) \
    X(kInvertChannels, "Invert Channels", kColor, 0x0C081, 9094, 94) \
    X(kInvertColors, "Invert Colors", kColor, 0x0C0AF, 9035, 39) \
    X(kJigsaw, "Jigsaw", kArtistic, 0x08081, 9036, 40) \
    X(kLensCorrection, "Lens Correction", kPhotographic, 0x28091, 9088, 41) \
    X(kLensFlare, "Lens Flare", kPhotographic, 0x08091, 9037, 42) \
    X(kLightBox, "Light Box", kEffect, 0x08101, 9038, 43) \
    X(kMatt, "Matt", kImage, 0x0804F, 9039, 44) \
    X(kMedian, "Median", kPhotographic, 0x08081, 9040, 45) \
    X(kMoonlight, "Moonlight", kPhotographic, 0x08081, 9041, 46) \
    X(kMotionBlur, "Motion Blur", kBlur, 0x080C1, 9042, 47) \
    X(kNeon, "Neon", kArtistic, 0x08081, 9043, 48) \
    X(kNormalize, "Normalize", kPhotographic, 0x080C1, 9044, 49) \
    X(kObscure, "Obscure", kArtistic, 0x08083, 9045, 50) \
    X(kOilPainting, "Oil Painting", kArtistic, 0x080C1, 9046, 51) \
    X(kPaperCurl, "Paper Curl", kArtistic, 0x08091, 9047, 52) \
    X(kPhotoFineTune, "Photo Fine-tune", kPhotographic, 0x08081, 9087, 11) \
    X(kPlastic, "Plastic", kArtistic, 0x08091, 9048, 53) \
    X(kPositionOnly, "Position Only", kImage, 0x28097, 9049, 54) \
    X(kPosterize, "Posterize", kArtistic, 0x08087, 9050, 55) \
    X(kPrepress, "Prepress", kArtistic, 0x08091, 9051, 56) \
    X(kRadialBlur, "Radial Blur", kBlur, 0x08091, 9052, 57) \
    X(kRaise, "Raise", kImage, 0x08093, 9053, 58) \
    X(kRaster, "Raster", kArtistic, 0x08081, 9054, 59) \
    X(kRedEyeReduction, "Red-eye Reduction", kPhotographic, 0x28081, 9055, 60) \
    X(kReduceNoise, "Reduce noise", kNoise, 0x08091, 9056, 61) \
    X(kReflection, "Reflection", kArtistic, 0x08091, 9057, 62) \
    X(kResize, "Resize", kImage, 0x3A01F, 9058, 63) \
    X(kRemoveAlpha, "Remove Alpha", kImage, 0x29490, 9059, 64) \
    X(kRipple, "Ripple", kArtistic, 0x28081, 9060, 65) \
    X(kRotate, "Rotate", kImage, 0x0801F, 9061, 66) \
    X(kRound, "Round", kArtistic, 0x08091, 9062, 67) \
    X(kSeamless, "Seamless", kImage, 0x2804F, 9063, 68) \
    X(kSepia, "Sepia", kPhotographic, 0x08081, 9064, 69) \
    X(kShade, "Shade", kPhotographic, 0x08091, 9065, 70) \
    X(kShadow, "Shadow", kPhotographic, 0x08211, 9066, 71) \
    X(kShapeMask, "Shape mask", kArtistic, 0x08091, 9067, 72) \
    X(kShards, "Shards", kArtistic, 0x08091, 9089, 73) \
    X(kSharpen, "Sharpen", kPhotographic, 0x08083, 9068, 74) \
    X(kShear, "Shear", kImage, 0x08053, 9069, 75) \
    X(kSigmoidalContrast, "Sigmoidal Contrast", kColor, 0x08081, 9070, 76) \
    X(kSocialMedia, "Social Media", kArtistic, 0x2B081, 9092, 77) \
    X(kSolarize, "Solarize", kArtistic, 0x08083, 9071, 78) \
    X(kSplitChannels, "Split channels", kImage, 0x08191, 9072, 79) \
    X(kStars, "Stars", kPhotographic, 0x08091, 9073, 80) \
    X(kStitch, "Stitch", kImage, 0x39817, 9074, 81) \
    X(kSwirl, "Swirl", kArtistic, 0x08011, 9075, 82) \
    X(kTile, "Tile", kImage, 0x080D7, 9076, 83) \
    X(kTornEdges, "Torn Edges", kArtistic, 0x08091, 9077, 84) \
    X(kTrim, "Trim", kImage, 0x08011, 9078, 85) \
    X(kUnsharpMask, "Unsharp Mask", kPhotographic, 0x08083, 9079, 86) \
    X(kVignette, "Vignette", kArtistic, 0x08093, 9080, 87) \
    X(kWaterDrops, "Water Drops", kArtistic, 0x0808F, 9081, 88) \
    X(kWatermark, "Watermark", kImage, 0x28011, 9082, 89) \
    X(kWaves, "Waves", kArtistic, 0x0808F, 9083, 90) \
    X(kWhiteBalance, "White Balance", kPhotographic, 0x08081, 9084, 91) \
    X(kWhiteThreshold, "White Threshold", kPhotographic, 0x08083, 9085, 92) \
    X(kZoomBlur, "Zoom Blur", kBlur, 0x08081, 9086, 93)
// clang-format on

#define LMF_DECLARE(slots, name, category, flags, pageId, itemId) extern const FilterSlots slots;
LMF_CATALOGUE(LMF_DECLARE)
#undef LMF_DECLARE

#define LMF_ROW(slots, name, category, flags, pageId, itemId) {name, &slots, category, flags, itemId, pageId},
constinit FilterEntry FilterCatalogue[kFilterCount] = {LMF_CATALOGUE(LMF_ROW)};
#undef LMF_ROW

bool FilterAccepts(const FilterEntry &entry, int32_t mode) {
    switch (mode) {
    case kModeTrueColor:
        return (entry.flags & (FilterAcceptsColor | FilterNeedsSecond)) != 0;
    case kModeGrey:
        return (entry.flags & FilterAcceptsGrey) != 0;
    case kModePalette:
        return (entry.flags & FilterAcceptsPalette) != 0;
    case kModeMono:
        return (entry.flags & FilterAcceptsMono) != 0;
    default:
        return true;
    }
}

/// What the kind of host and its restrictions withhold, whatever the picture.
static bool HostWithholds(const OfferRules &rules, uint32_t flags) {
    if (rules.runFlags & (kRunDaubery | kRunPaint)) {
        if (flags & FilterHiddenFromPaint) return true;
        if (rules.hasHostRestrictions && rules.hostRestrictA && (flags & FilterBarredByA)) return true;
        if (rules.hasHostRestrictions && rules.hostRestrictB && (flags & FilterBarredByB)) return true;
    }
    if ((rules.runFlags & kRunBatch) && (flags & FilterHiddenFromBatch)) return true;
    if ((rules.runFlags & (kRunReelsmith | kRunFrameloom)) && (flags & FilterHiddenFromAnimation)) return true;
    return (flags & FilterNeedsClipboard) && !rules.clipboardHasPicture;
}

bool FilterIsOffered(const OfferRules &rules, int32_t mode, bool restriction1, bool restriction2, bool hasSecond,
                     int32_t row) {
    const FilterEntry &entry = FilterCatalogue[row];
    if (!(entry.flags & FilterEnabled) || HostWithholds(rules, entry.flags)) return false;
    if (mode < kModeTrueColor || mode > kModeMono) return false;
    if (mode == kModeTrueColor && (entry.flags & FilterNeedsSecond)) return hasSecond;
    if (!FilterAccepts(entry, mode)) return false;
    if (!restriction1) return true;
    uint32_t barred = FilterBarredByB;
    if (mode == kModePalette || mode == kModeMono) barred |= FilterBarredByPaletteRule;
    if (restriction2) barred |= FilterBarredByA;
    return (entry.flags & barred) == 0;
}

void LoadAllSettings(FilterContext *context) {
    for (const FilterEntry &entry : FilterCatalogue) entry.slots->LoadSettings(context);
}

void StoreAllSettings(FilterContext *context) {
    for (const FilterEntry &entry : FilterCatalogue) entry.slots->StoreSettings(context);
}

void ResetAllDefaults(FilterContext *context) {
    for (const FilterEntry &entry : FilterCatalogue) entry.slots->ResetDefaults(context);
}

} // namespace lmf
