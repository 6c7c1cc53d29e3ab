// Caption: adds a bar below the picture with a text, in which macros such as %D stand for the date and the like.
// The text has a font, its size in pixels, Bold, Italic, Antialias and a colour; Justify sets it left, in the middle or
// right. The bar has a frame of Frame pixels in its own colour and Padding pixels between frame and text. Char. space
// and Line space widen or narrow the text in percent. Single line keeps the text up to its first line end, on one line.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    TextField(294, "Text:", &P::FilterCaptionString),
    FontButton(290, "Font:", &P::FilterCaptionFontName),
    NumberEdit(291, "Font size:", &P::FilterCaptionFontsize, {4, 144}),
    CheckBox(292, "Bold", &P::FilterCaptionBold),
    CheckBox(293, "Italic", &P::FilterCaptionItal),
    ColorButton(295, "Text", &P::FilterCaptionTextColor),
    ColorButton(296, "Frame", &P::FilterCaptionFramecolor),
    Slider(297, "Frame:", &P::FilterCaptionFramesize, {0, 32}),
    Slider(298, "Padding:", &P::FilterCaptionPadding, {0, 32}),
    Slider(299, "Char. space:", &P::FilterCaptionCharspace, {80, 120}),
    Slider(300, "Line space:", &P::FilterCaptionLinespace, {60, 120}),
    CheckBox(301, "Antialias", &P::FilterCaptionAntialias),
    CheckBox(302, "Single line", &P::FilterCaptionSingleline),
    Combo(303, "Justify:", &P::FilterCaptionJustification, "Left;Center;Right"),
};
extern constexpr Filter kCaption = MakeFilter<kPage>(nullptr);

} // namespace lmf
