// Gamma: a power curve through every channel. The setting is the exponent itself, in hundredths: above 1.00 the picture
// darkens. Palette pictures have their colour table changed.
#include <cmath>

#include "engine/filter.h"
#include "image/color/tone_table.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    HundredthsSlider(480, "Gamma:", &P::FilterGammaLevel, {10, 200})
        .Help("Lightens the middle tones below 1.00 and darkens them above; black and white stay."),
};

DibHandle GammaKernel(const ReadView &source, FilterContext &context) {
    ToneTable table;
    for (int32_t i = 0; i < 256; i++)
        table.at[i] = static_cast<uint8_t>(std::pow(i / 255.0, context.FilterGammaLevel / 100.0) * 255.0 + 0.5);
    return ApplyToneTable(source, table);
}

} // namespace

extern constexpr Filter kGamma = MakeFilter<kPage>(GammaKernel);

} // namespace lmf
