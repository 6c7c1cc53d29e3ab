// Convert to Mono: a 1-bit black and white picture. With "Dither" the greys become patterns of dots; without it what is
// brighter than "Threshold" becomes white. The second picture of the result is dropped.
#include "engine/filter.h"
#include "image/color/dither.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(361, "Threshold:", &P::FilterConvertToMonoThreshold, {1, 254})
        .In(Unit::Levels)
        .Help("Makes what is brighter than this level white and the rest black, unless \"Dither\" is set."),
    CheckBox(360, "Dither", &P::FilterConvertToMonoDither).Help("Shows shades of grey as patterns of black dots."),
};

DibHandle ConvertToMonoKernel(const ReadView &source, FilterContext &context) {
    const MonoTone tone = {context.ditherBrightness, context.ditherContrast};
    DibOwner result(context.FilterConvertToMonoDither != 0
                        ? ErrorDiffuse(source, kBlackAndWhite, 1, tone)
                        : ThresholdToMono(source, context.FilterConvertToMonoThreshold));
    if (!result) return nullptr;
    ReplaceSecond(context, nullptr);
    return result.Release();
}

} // namespace

extern constexpr Filter kConvertToMono = MakeFilter<kPage>(ConvertToMonoKernel);

} // namespace lmf
