// Convert to Mono: a 1-bit black and white picture. With "Dither" the greys become patterns of dots; without it what is
// brighter than "Threshold" becomes white. The second picture of the result is dropped.
#include "engine/slots.h"
#include "image/dither.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(361, "Threshold:", &FilterParameters::FilterConvertToMonoThreshold, {1, 254}),
    CheckBox(360, "Dither", &FilterParameters::FilterConvertToMonoDither),
};

static DibHandle ConvertToMonoKernel(DibHandle source, FilterContext *context) {
    const MonoTone tone = {Settings.DitherBrightness, Settings.DitherContrast};
    DibOwner result(context->FilterConvertToMonoDither != 0
                        ? ErrorDiffuse(source, kBlackAndWhite, 1, tone)
                        : ThresholdToMono(source, context->FilterConvertToMonoThreshold));
    if (!result) return nullptr;
    BlockFree(context->secondResult);
    context->secondResult = nullptr;
    return result.Release();
}

extern constexpr FilterSlots kConvertToMono = MakeSlots<kPage>(ConvertToMonoKernel);

} // namespace lmf
