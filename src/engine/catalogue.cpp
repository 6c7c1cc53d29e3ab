#include "engine/catalogue.h"

#include <algorithm>
#include <vector>

namespace lmf {

namespace {

enum Category : int32_t { kArtistic, kBlur, kColor, kEffect, kImage, kNoise, kPhotographic, kQuality };

} // namespace

// One line a filter: row, filter, category, flags, page id, item id. The flags are bits of FilterFlag, in the form in
// which hosts document them.
// clang-format off
#define LMF_CATALOGUE(X) \
    X(ADD_ALPHA, kAddAlpha, kImage, 0x29081, 9000, 0) \
    X(ADD_NOISE, kAddNoise, kNoise, 0x08083, 9001, 1) \
    X(ALPHA_SHADOW, kAlphaShadow, kPhotographic, 0x29480, 9002, 2) \
    X(AVERAGE, kAverage, kQuality, 0x08083, 9003, 3) \
    X(BAYER_DITHER, kBayerDither, kEffect, 0x08187, 9004, 4) \
    X(BIG_SCREEN, kBigScreen, kEffect, 0x08081, 9005, 5) \
    X(BLACK_THRESHOLD, kBlackThreshold, kPhotographic, 0x08083, 9006, 6) \
    X(BUMP, kBump, kArtistic, 0x08083, 9007, 7) \
    X(CANVAS, kCanvas, kArtistic, 0x08081, 9008, 8) \
    X(CAPTION, kCaption, kPhotographic, 0x2C0CF, 9009, 9) \
    X(CHANNELS, kChannels, kImage, 0x08081, 9010, 10) \
    X(COLOR_AND_INTENSITY, kColorAndIntensity, kColor, 0x280A5, 9011, 12) \
    X(CONTRAST_AND_BRIGHTNESS, kContrastAndBrightness, kColor, 0x280A7, 9012, 13) \
    X(CONVERT_TO_256_COLORS, kConvertTo256Colors, kImage, 0x2B10B, 9013, 14) \
    X(CONVERT_TO_GREY, kConvertToGrey, kImage, 0x2B10D, 9014, 15) \
    X(CONVERT_TO_MONO, kConvertToMono, kImage, 0x2B087, 9015, 16) \
    X(CONVERT_TO_RGB, kConvertToRGB, kImage, 0x2B08E, 9016, 17) \
    X(CORNERS, kCorners, kEffect, 0x080C1, 9017, 18) \
    X(CROP, kCrop, kImage, 0x3A04F, 9018, 19) \
    X(DESPECKLE, kDespeckle, kNoise, 0x08081, 9019, 20) \
    X(EDGE_TRACE_AND_FATTEN, kEdgeTraceAndFatten, kArtistic, 0x28088, 9020, 21) \
    X(EMBOSS, kEmboss, kArtistic, 0x08083, 9021, 22) \
    X(EDGE_ENHANCEMENT, kEdgeEnhancement, kQuality, 0x08083, 9022, 23) \
    X(EQUALIZE, kEqualize, kPhotographic, 0x08083, 9023, 24) \
    X(EXPLODE, kExplode, kEffect, 0x08023, 9024, 25) \
    X(FACE_DETECTION, kFaceDetection, kEffect, 0x28001, 9025, 26) \
    X(FADE, kFade, kEffect, 0x08081, 9026, 27) \
    X(FILM_GRAIN, kFilmGrain, kEffect, 0x08081, 9090, 28) \
    X(FLIP, kFlip, kImage, 0x2C01F, 9027, 29) \
    X(FRAME, kFrame, kImage, 0x08091, 9028, 30) \
    X(GAMMA, kGamma, kPhotographic, 0x08087, 9029, 31) \
    X(GAUSSIAN_BLUR, kGaussianBlur, kBlur, 0x08083, 9030, 32) \
    X(GLASS_BLOCK, kGlassBlock, kArtistic, 0x08083, 9031, 33) \
    X(HALFTONE, kHalftone, kArtistic, 0x08091, 9032, 34) \
    X(HEXAGON, kHexagon, kEffect, 0x08081, 9091, 35) \
    X(HUE_SATURATION_BRIGHTNESS, kHueSaturationBrightness, kColor, 0x08081, 9033, 36) \
    X(IMPACT, kImpact, kEffect, 0x08021, 9093, 37) \
    X(IMPLODE, kImplode, kEffect, 0x08023, 9034, 38) \
    X(INVERT_CHANNELS, kInvertChannels, kColor, 0x0C081, 9094, 94) \
    X(INVERT_COLORS, kInvertColors, kColor, 0x0C0AF, 9035, 39) \
    X(JIGSAW, kJigsaw, kArtistic, 0x08081, 9036, 40) \
    X(LENS_CORRECTION, kLensCorrection, kPhotographic, 0x28091, 9088, 41) \
    X(LENS_FLARE, kLensFlare, kPhotographic, 0x08091, 9037, 42) \
    X(LIGHT_BOX, kLightBox, kEffect, 0x08101, 9038, 43) \
    X(MATT, kMatt, kImage, 0x0804F, 9039, 44) \
    X(MEDIAN, kMedian, kPhotographic, 0x08081, 9040, 45) \
    X(MOONLIGHT, kMoonlight, kPhotographic, 0x08081, 9041, 46) \
    X(MOTION_BLUR, kMotionBlur, kBlur, 0x080C1, 9042, 47) \
    X(NEON, kNeon, kArtistic, 0x08081, 9043, 48) \
    X(NORMALIZE, kNormalize, kPhotographic, 0x080C1, 9044, 49) \
    X(OBSCURE, kObscure, kArtistic, 0x08083, 9045, 50) \
    X(OIL_PAINTING, kOilPainting, kArtistic, 0x080C1, 9046, 51) \
    X(PAPER_CURL, kPaperCurl, kArtistic, 0x08091, 9047, 52) \
    X(PHOTO_FINE_TUNE, kPhotoFineTune, kPhotographic, 0x08081, 9087, 11) \
    X(PLASTIC, kPlastic, kArtistic, 0x08091, 9048, 53) \
    X(POSITION_ONLY, kPositionOnly, kImage, 0x28097, 9049, 54) \
    X(POSTERIZE, kPosterize, kArtistic, 0x08087, 9050, 55) \
    X(PREPRESS, kPrepress, kArtistic, 0x08091, 9051, 56) \
    X(RADIAL_BLUR, kRadialBlur, kBlur, 0x08091, 9052, 57) \
    X(RAISE, kRaise, kImage, 0x08093, 9053, 58) \
    X(RASTER, kRaster, kArtistic, 0x08081, 9054, 59) \
    X(RED_EYE_REDUCTION, kRedEyeReduction, kPhotographic, 0x28081, 9055, 60) \
    X(REDUCE_NOISE, kReduceNoise, kNoise, 0x08091, 9056, 61) \
    X(REFLECTION, kReflection, kArtistic, 0x08091, 9057, 62) \
    X(RESIZE, kResize, kImage, 0x3A01F, 9058, 63) \
    X(REMOVE_ALPHA, kRemoveAlpha, kImage, 0x29490, 9059, 64) \
    X(RIPPLE, kRipple, kArtistic, 0x28081, 9060, 65) \
    X(ROTATE, kRotate, kImage, 0x0801F, 9061, 66) \
    X(ROUND, kRound, kArtistic, 0x08091, 9062, 67) \
    X(SEAMLESS, kSeamless, kImage, 0x2804F, 9063, 68) \
    X(SEPIA, kSepia, kPhotographic, 0x08081, 9064, 69) \
    X(SHADE, kShade, kPhotographic, 0x08091, 9065, 70) \
    X(SHADOW, kShadow, kPhotographic, 0x08211, 9066, 71) \
    X(SHAPE_MASK, kShapeMask, kArtistic, 0x08091, 9067, 72) \
    X(SHARDS, kShards, kArtistic, 0x08091, 9089, 73) \
    X(SHARPEN, kSharpen, kPhotographic, 0x08083, 9068, 74) \
    X(SHEAR, kShear, kImage, 0x08053, 9069, 75) \
    X(SIGMOIDAL_CONTRAST, kSigmoidalContrast, kColor, 0x08081, 9070, 76) \
    X(SOCIAL_MEDIA, kSocialMedia, kArtistic, 0x2B081, 9092, 77) \
    X(SOLARIZE, kSolarize, kArtistic, 0x08083, 9071, 78) \
    X(SPLIT_CHANNELS, kSplitChannels, kImage, 0x08191, 9072, 79) \
    X(STARS, kStars, kPhotographic, 0x08091, 9073, 80) \
    X(STITCH, kStitch, kImage, 0x39817, 9074, 81) \
    X(SWIRL, kSwirl, kArtistic, 0x08011, 9075, 82) \
    X(TILE, kTile, kImage, 0x080D7, 9076, 83) \
    X(TORN_EDGES, kTornEdges, kArtistic, 0x08091, 9077, 84) \
    X(TRIM, kTrim, kImage, 0x08011, 9078, 85) \
    X(UNSHARP_MASK, kUnsharpMask, kPhotographic, 0x08083, 9079, 86) \
    X(VIGNETTE, kVignette, kArtistic, 0x08093, 9080, 87) \
    X(WATER_DROPS, kWaterDrops, kArtistic, 0x0808F, 9081, 88) \
    X(WATERMARK, kWatermark, kImage, 0x28011, 9082, 89) \
    X(WAVES, kWaves, kArtistic, 0x0808F, 9083, 90) \
    X(WHITE_BALANCE, kWhiteBalance, kPhotographic, 0x08081, 9084, 91) \
    X(WHITE_THRESHOLD, kWhiteThreshold, kPhotographic, 0x08083, 9085, 92) \
    X(ZOOM_BLUR, kZoomBlur, kBlur, 0x08081, 9086, 93)
// clang-format on

#define LMF_DECLARE(row, filter, category, flags, pageId, itemId) extern const Filter filter;
LMF_CATALOGUE(LMF_DECLARE)
#undef LMF_DECLARE

namespace {

// The order is the interface: hosts use row numbers.
constexpr int32_t kRows[] = {
#define LMF_ROW(row, filter, category, flags, pageId, itemId) LMF_FILTER_##row,
    LMF_CATALOGUE(LMF_ROW)
#undef LMF_ROW
};
static_assert([] {
    for (int32_t row = 0; row < kFilterCount; row++)
        if (kRows[row] != row) return false;
    return std::size(kRows) == kFilterCount;
}());

constexpr const char *kNames[] = {
#define LMF_NAME(id, name) name,
    LMF_FILTERS(LMF_NAME)
#undef LMF_NAME
};

} // namespace

constinit FilterEntry FilterCatalogue[kFilterCount] = {
#define LMF_ROW(row, filter, category, flags, pageId, itemId)                                                          \
    {kNames[LMF_FILTER_##row], &filter, category, flags, itemId, pageId},
    LMF_CATALOGUE(LMF_ROW)
#undef LMF_ROW
};

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

namespace {

/// What the kind of host and its restrictions withhold, whatever the picture.
bool HostWithholds(const OfferRules &rules, uint32_t flags) {
    if (rules.runFlags & (LMF_RUN_DAUBERY | LMF_RUN_PAINT)) {
        if (flags & FilterHiddenFromPaint) return true;
        if (rules.hasHostRestrictions && rules.hostRestrictA && (flags & FilterBarredByA)) return true;
        if (rules.hasHostRestrictions && rules.hostRestrictB && (flags & FilterBarredByB)) return true;
    }
    if ((rules.runFlags & LMF_RUN_BATCH) && (flags & FilterHiddenFromBatch)) return true;
    if ((rules.runFlags & (LMF_RUN_REELSMITH | LMF_RUN_FRAMELOOM)) && (flags & FilterHiddenFromAnimation)) return true;
    return (flags & FilterNeedsClipboard) && !rules.clipboardHasPicture;
}

} // namespace

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

void LoadAllSettings(FilterContext &context) {
    for (const FilterEntry &entry : FilterCatalogue) LoadPage(*entry.filter, context);
}

void StoreAllSettings(const FilterContext &context) {
    for (const FilterEntry &entry : FilterCatalogue) StorePage(*entry.filter, context);
}

void ResetAllDefaults(FilterContext &context) {
    for (const FilterEntry &entry : FilterCatalogue) ResetPage(*entry.filter, context);
}

void LimitAllSettings(FilterContext &context) {
    for (const FilterEntry &entry : FilterCatalogue) LimitPage(*entry.filter, context);
}

namespace {

std::vector<ControlPlace> IndexControls() {
    std::vector<ControlPlace> index;
    for (int32_t row = 0; row < kFilterCount; row++)
        for (const PageControl &control : FilterCatalogue[row].filter->page)
            if (control.kind != ControlKind::None) index.push_back({control.id, row, &control});
    std::ranges::sort(index, {}, &ControlPlace::id);
    return index;
}

} // namespace

const ControlPlace *FindControl(int32_t id) {
    static const std::vector<ControlPlace> kIndex = IndexControls();
    const auto place = std::ranges::lower_bound(kIndex, id, {}, &ControlPlace::id);
    return place != kIndex.end() && place->id == id ? &*place : nullptr;
}

} // namespace lmf
