// Convert to Mono: a 1-bit black and white picture. With "Dither" the greys become patterns of dots; without it what is
// brighter than "Threshold" becomes white. The second picture of the result is dropped.
#include "engine/filter.h"
#include "image/color/dither.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(361, "Threshold:", &P::FilterConvertToMonoThreshold, {1, 254}),
    CheckBox(360, "Dither", &P::FilterConvertToMonoDither),
};

static DibHandle ConvertToMonoKernel(const ReadView &source, FilterContext &context) {
    const MonoTone tone = {Settings.DitherBrightness, Settings.DitherContrast};
    DibOwner result(context.FilterConvertToMonoDither != 0
                        ? ErrorDiffuse(source, kBlackAndWhite, 1, tone)
                        : ThresholdToMono(source, context.FilterConvertToMonoThreshold));
    if (!result) return nullptr;
    ReplaceSecond(context, nullptr);
    return result.Release();
}

extern constexpr Filter kConvertToMono = MakeFilter<kPage>(ConvertToMonoKernel);

} // namespace lmf
