// Impact: blends a blurred copy of the picture with its grey copy, for strong poster-like contrast.
// Mode is the way of blending, Radius that of the blur; Contrast and Brightness work on the blurred copy.
// Outline draws the contours of the picture on top, in a colour of their own.
#include "engine/filter.h"
#include "filters/neighbourhood/neon.h"
#include "image/blur/gaussian.h"
#include "image/color/blend.h"
#include "image/color/tone_table.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(1190, "Mode:", &P::FilterImpactMode, kBlendModeList)
        .Help("Chooses how the blurred copy of the picture is blended with its grey copy."),
    Slider(1191, "Radius:", &P::FilterImpactBlur, {0, 65})
        .In(Unit::Pixels, 10)
        .Help("Blurs the colored copy this far; below 2 it stays sharp."),
    Slider(1194, "Contrast:", &P::FilterImpactContrast, {0, 255})
        .In(Unit::Levels)
        .Help("Makes the contrast of the blurred copy stronger above 127 and weaker below."),
    Slider(1193, "Brightness:", &P::FilterImpactBrightness, {0, 255})
        .In(Unit::Levels)
        .Help("Makes the blurred copy lighter above 127 and darker below."),
    CheckBox(1192, "Outline", &P::FilterImpactOutlineEnable).Help("Draws the contours of the picture on top."),
    ColorButton(1195, "Outline", &P::FilterImpactOutlineColor)
        .Named("Outline color")
        .Help("Gives the contours their color."),
};

constexpr int32_t kSmallestBlur = 2, kSigma = 50; ///< tenths of a pixel
constexpr int32_t kDarkest = 4, kLightest = 251;  ///< tones of the grey copy

DibHandle GreyCopy(const ReadView &source) {
    LockedDib grey(DibToGrey(source));
    for (int32_t y = 0; grey && y < source.height; y++) {
        uint8_t *row = grey.View().Row(y);
        std::transform(row, row + source.width, row,
                       [](int32_t tone) { return static_cast<uint8_t>(std::clamp(tone, kDarkest, kLightest)); });
    }
    return grey.Release();
}

/// The copy that is blended with the grey one, 24 bits.
DibHandle BlurredCopy(const ReadView &source, int32_t radiusTenths) {
    if (radiusTenths < kSmallestBlur) return DibToRgb(source);
    LockedDib blurred(GaussianBlurDirect(source, radiusTenths, kSigma));
    if (!blurred || blurred.View().bits == 24) return blurred.Release();
    return DibToRgb(blurred);
}

/// Blends 24-bit pixels with grey ones in place, after their channels went through the tones.
void BlendInPlace(const WriteView &colors, const ReadView &grey, const BlendTable &table, const ToneTable &tones) {
    for (int32_t y = 0; y < colors.height; y++) {
        uint8_t *pixel = colors.Row(y);
        const uint8_t *tops = grey.Row(y);
        for (int32_t x = 0; x < colors.width; x++, pixel += 3) {
            const uint8_t *blended = table.blended.data + tops[x] * 256;
            for (int32_t c = 0; c < 3; c++) pixel[c] = blended[tones.at[pixel[c]]];
        }
    }
}

DibHandle ImpactKernel(const ReadView &source, FilterContext &context) {
    const LockedDib grey(GreyCopy(source));
    if (!grey) return nullptr;
    LockedDib picture(BlurredCopy(source, context.FilterImpactBlur));
    const BlendTable table(static_cast<uint32_t>(context.FilterImpactMode));
    if (!picture || !table) return nullptr;
    const ToneTable tones = BuildContrastTable(context.FilterImpactContrast, context.FilterImpactBrightness);
    BlendInPlace(picture.View(), grey, table, tones);
    if (!context.FilterImpactOutlineEnable) return picture.Release();
    const LockedDib outline(Neon(grey));
    if (!outline) return nullptr;
    return DibTintByMask(picture, outline, static_cast<Color>(context.FilterImpactOutlineColor));
}

} // namespace

extern constexpr Filter kImpact = MakeFilter<kPage>(ImpactKernel);

} // namespace lmf
