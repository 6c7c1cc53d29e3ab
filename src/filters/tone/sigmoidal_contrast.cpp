// Sigmoidal Contrast: sends every channel through an S-shaped curve, which raises the contrast around the midpoint and
// keeps black and white; without "Brighten" through the inverse curve, which lowers it. The curve is the logistic
// function, scaled to its values at black and white (G. J. Braun and M. D. Fairchild, 1999).
#include <algorithm>
#include <cmath>

#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(890, "Contrast:", &P::FilterSigcontContrast, {1, 200})
        .In(Unit::None, 10)
        .Help("Sets how much the contrast around the midpoint changes."),
    Slider(891, "Midpoint:", &P::FilterSigcontMidpoint, {1, 100})
        .Edit(0, 100)
        .In(Unit::Levels)
        .Help("Sets the tone around which the contrast changes, as a level out of 255."),
    CheckBox(892, "Brighten", &P::FilterSigcontSharpen)
        .Help("Raises the contrast, which lightens most of the picture; clear, it lowers it and darkens."),
};

/// The level of channel value i before rounding, 0 to 255. With `brighten` the curve itself adds one half already.
float CurveLevel(int32_t i, double steepness, int32_t midpoint, bool brighten) {
    const double center = midpoint / 255.0;
    const double atBlack = 1 / (std::exp(center * steepness) + 1);
    const double atWhite = 1 / (std::exp((center - 1) * steepness) + 1);
    const double x = i / 255.0;
    double level;
    if (brighten) {
        level = (1 / (std::exp((center - x) * steepness) + 1) - atBlack) * 255 / (atWhite - atBlack) + 0.5;
    } else {
        const double y = (atWhite - atBlack) * x + atBlack;
        level = (midpoint * (1 / 255.0) - std::log((1 - y) / y) / steepness) * 255;
    }
    return std::clamp(static_cast<float>(level), 0.0f, 255.0f);
}

DibHandle SigmoidalContrastKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    ToneTable table;
    for (int32_t i = 0; i < 256; i++) {
        const float level = CurveLevel(i, context.FilterSigcontContrast / 10.0, context.FilterSigcontMidpoint,
                                       context.FilterSigcontSharpen != 0);
        table.at[i] = static_cast<uint8_t>(level <= 0 ? 0 : level >= 255 ? 255 : level + 0.5);
    }
    MapChannels(pass, table);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kSigmoidalContrast = MakeFilter<kPage>(SigmoidalContrastKernel);

} // namespace lmf
