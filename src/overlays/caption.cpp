// Caption: adds a bar below the picture with a text, in which macros such as %D stand for the date and the like.
// The text has a font, its size in pixels, Bold, Italic, Antialias and a colour; Justify sets it left, in the middle or
// right. The bar has a frame of Frame pixels in its own colour and Padding pixels between frame and text. Char. space
// and Line space widen or narrow the text in percent. Single line keeps the text up to its first line end, on one line.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    TextField(294, "Text:", &P::FilterCaptionString)
        .Help("The caption; a macro such as %D stands for the date, %C for the copyright sign."),
    FontButton(290, "Font:", &P::FilterCaptionFontName).Help("The typeface of the caption."),
    NumberEdit(291, "Font size:", &P::FilterCaptionFontsize, {4, 144})
        .In(Unit::Pixels)
        .Help("The height of the letters."),
    CheckBox(292, "Bold", &P::FilterCaptionBold).Help("Sets the caption in bold letters."),
    CheckBox(293, "Italic", &P::FilterCaptionItal).Help("Sets the caption in slanted letters."),
    ColorButton(295, "Text", &P::FilterCaptionTextColor).Named("Text color").Help("The color of the letters."),
    ColorButton(296, "Frame", &P::FilterCaptionFramecolor)
        .Named("Frame color")
        .Help("The color of the frame around picture and caption."),
    Slider(297, "Frame:", &P::FilterCaptionFramesize, {0, 32}).In(Unit::Pixels).Help("The width of the frame."),
    Slider(298, "Padding:", &P::FilterCaptionPadding, {0, 32})
        .In(Unit::Pixels)
        .Help("The space between the frame and the text."),
    Slider(299, "Char. space:", &P::FilterCaptionCharspace, {80, 120})
        .In(Unit::Percent)
        .Help("Moves the letters apart, or together below 100."),
    Slider(300, "Line space:", &P::FilterCaptionLinespace, {60, 120})
        .In(Unit::Percent)
        .Help("Moves the lines apart, or together below 100."),
    CheckBox(301, "Antialias", &P::FilterCaptionAntialias).Help("Smooths the edges of the letters."),
    CheckBox(302, "Single line", &P::FilterCaptionSingleline)
        .Help("Keeps what stands before the first line end, on one line."),
    Combo(303, "Justify:", &P::FilterCaptionJustification, "Left;Center;Right")
        .Help("Sets the text to the left, in the middle or to the right."),
};

} // namespace

extern constexpr Filter kCaption = MakeFilter<kPage>(nullptr);

} // namespace lmf
