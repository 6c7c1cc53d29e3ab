// Contrast and Brightness: a straight tone line through every channel. Contrast makes it steeper or flatter, brightness
// lifts or lowers it; 127 is the middle of both, so that the factory 128 raises the tones by a trace.
#include "engine/filter.h"
#include "image/color/tone_table.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(330, "Contrast:", &P::FilterContrast, {0, 255})
        .Help("Spreads light and dark tones apart above 127 and brings them together below."),
    Slider(331, "Brightness:", &P::FilterBrightness, {0, 255})
        .Help("Lightens the whole picture above 127 and darkens it below."),
};

DibHandle ContrastAndBrightnessKernel(const ReadView &source, FilterContext &context) {
    return ApplyToneTableByMode(source, BuildContrastTable(context.FilterContrast, context.FilterBrightness),
                                context.mode);
}

} // namespace

extern constexpr Filter kContrastAndBrightness = MakeFilter<kPage>(ContrastAndBrightnessKernel);

} // namespace lmf
