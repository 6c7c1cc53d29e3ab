// Contrast and Brightness: a straight tone line through every channel. Contrast makes it steeper or flatter, brightness
// lifts or lowers it; 127 is the middle of both, so that the factory 128 raises the tones by a trace.
#include "engine/slots.h"
#include "filters/tone/tone_table.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(330, "Contrast:", &FilterParameters::FilterContrast, {0, 255}),
    Slider(331, "Brightness:", &FilterParameters::FilterBrightness, {0, 255}),
};

static DibHandle ContrastAndBrightnessKernel(DibHandle source, FilterContext *context) {
    ToneTable table;
    BuildContrastTable(context->FilterContrast - 127, context->FilterBrightness - 127, &table);
    return ApplyToneTableByMode(source, table, context);
}

extern constexpr FilterSlots kContrastAndBrightness = MakeSlots<kPage>(ContrastAndBrightnessKernel);

} // namespace lmf
