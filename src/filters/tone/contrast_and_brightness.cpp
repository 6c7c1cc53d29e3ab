// Contrast and Brightness: a straight tone line through every channel. Contrast makes it steeper or flatter, brightness
// lifts or lowers it; 127 is the middle of both, so that the factory 128 raises the tones by a trace.
#include "engine/filter.h"
#include "image/color/tone_table.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(330, "Contrast:", &P::FilterContrast, {0, 255}),
    Slider(331, "Brightness:", &P::FilterBrightness, {0, 255}),
};

static DibHandle ContrastAndBrightnessKernel(const ReadView &source, FilterContext &context) {
    ToneTable table;
    BuildContrastTable(context.FilterContrast - 127, context.FilterBrightness - 127, &table);
    return ApplyToneTableByMode(source, table, context.mode);
}

extern constexpr Filter kContrastAndBrightness = MakeFilter<kPage>(ContrastAndBrightnessKernel);

} // namespace lmf
