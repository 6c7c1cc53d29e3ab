// Caption: adds a bar below the picture with a text, in which macros such as %D stand for the date and the like.
// The text has a font, its size in pixels, Bold, Italic, Antialias and a colour; Justify sets it left, in the middle or
// right. The bar has a frame of Frame pixels in its own colour and Padding pixels between frame and text. Char. space
// and Line space widen or narrow the text in percent. Single line keeps the text up to its first line end, on one line.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    TextField(294, "Text:", &FilterParameters::FilterCaptionString),
    FontButton(290, "Font:", &FilterParameters::FilterCaptionFontName),
    NumberEdit(291, "Font size:", &FilterParameters::FilterCaptionFontsize, {4, 144}),
    CheckBox(292, "Bold", &FilterParameters::FilterCaptionBold),
    CheckBox(293, "Italic", &FilterParameters::FilterCaptionItal),
    ColorButton(295, "Text", &FilterParameters::FilterCaptionTextColor),
    ColorButton(296, "Frame", &FilterParameters::FilterCaptionFramecolor),
    Slider(297, "Frame:", &FilterParameters::FilterCaptionFramesize, {0, 32}),
    Slider(298, "Padding:", &FilterParameters::FilterCaptionPadding, {0, 32}),
    Slider(299, "Char. space:", &FilterParameters::FilterCaptionCharspace, {80, 120}),
    Slider(300, "Line space:", &FilterParameters::FilterCaptionLinespace, {60, 120}),
    CheckBox(301, "Antialias", &FilterParameters::FilterCaptionAntialias),
    CheckBox(302, "Single line", &FilterParameters::FilterCaptionSingleline),
    Combo(303, "Justify:", &FilterParameters::FilterCaptionJustification, "Left;Center;Right"),
};
extern constexpr FilterSlots kCaption = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
