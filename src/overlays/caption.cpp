#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(301, "Antialias", &FilterParameters::FilterCaptionAntialias),
    CheckBox(292, "Bold", &FilterParameters::FilterCaptionBold),
    Slider(299, "Char. space:", &FilterParameters::FilterCaptionCharspace, {80, 120}),
    FontButton(290, "Font:", &FilterParameters::FilterCaptionFontName),
    Slider(291, "Font size:", &FilterParameters::FilterCaptionFontsize, {4, 144}),
    ColorButton(296, "Frame", &FilterParameters::FilterCaptionFramecolor),
    Slider(297, "Frame:", &FilterParameters::FilterCaptionFramesize, {0, 32}),
    CheckBox(293, "Italic", &FilterParameters::FilterCaptionItal),
    Slider(303, "Justify:", &FilterParameters::FilterCaptionJustification, {0, 2}),
    Slider(300, "Line space:", &FilterParameters::FilterCaptionLinespace, {60, 120}),
    Slider(298, "Padding:", &FilterParameters::FilterCaptionPadding, {0, 32}),
    CheckBox(302, "Single line", &FilterParameters::FilterCaptionSingleline),
    TextField(294, "Text:", &FilterParameters::FilterCaptionString),
    ColorButton(295, "Text", &FilterParameters::FilterCaptionTextColor),
};
extern constexpr FilterSlots kCaption = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
