#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(1037, "Bold", &FilterParameters::FilterWatermarkBold),
    Slider(1034, "Effect:", &FilterParameters::FilterWatermarkEffect, {0, 14}),
    FontButton(1035, "Font:", &FilterParameters::FilterWatermarkFontname),
    Slider(1036, "Font size:", &FilterParameters::FilterWatermarkFontsize, {4, 288}),
    ColorButton(1041, "Highlight", &FilterParameters::FilterWatermarkHighlightColor),
    CheckBox(1038, "Italic", &FilterParameters::FilterWatermarkItal),
    TextField(1043, "Image:", &FilterParameters::FilterWatermarkImagePath),
    CheckBox(1045, "Use image", &FilterParameters::FilterWatermarkImageUse),
    HiddenNumber(&FilterParameters::FilterWatermarkKeyFactor, {INT32_MIN, INT32_MAX}),
    Slider(1032, "Opacity:", &FilterParameters::FilterWatermarkOpacity, {8, 255}),
    Slider(1033, "Position:", &FilterParameters::FilterWatermarkPos, {0, 4}),
    ColorButton(1042, "Shadow", &FilterParameters::FilterWatermarkShadowColor),
    TextField(1040, "Text:", &FilterParameters::FilterWatermarkString),
    Slider(1030, "Horiz. offset:", &FilterParameters::FilterWatermarkXoff, {0, 20}),
    Slider(1031, "Vert. offset:", &FilterParameters::FilterWatermarkYoff, {0, 20}),
};
extern constexpr FilterSlots kWatermark = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
