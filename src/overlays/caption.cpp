// Caption: adds a bar below the picture with a text, in which macros such as %D stand for the date and the like.
// The text has a font, its size in pixels, Bold, Italic, Antialias and a colour; Justify sets it left, in the middle or
// right. The bar has a frame of Frame pixels in its own colour and Padding pixels between frame and text. Char. space
// and Line space widen or narrow the text in percent. Single line keeps the text up to its first line end, on one line.
#include <cstring>

#include "engine/filter.h"
#include "image/color/dither.h"
#include "image/core/dib_ops.h"
#include "overlays/canvas_text.h"
#include "overlays/text_macros.h"

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

/// Letters of indexed pictures are smooth only where the levels between two colours are there.
bool TakesSmoothLetters(const ReadView &picture) {
    return picture.bits > 8 || DibClassify(picture) == kModeGrey;
}

/// How much of the bar the text takes: lines are counted in the height that was asked for. Its box is wider by twice
/// the margin than the one that the text is drawn into, so a text that fits closely may lose its last line.
/// @return 0 when memory is short
int32_t MeasuredHeight(const TextDrawing &drawing, const char *text, uint32_t format, int32_t width, int32_t margin,
                       const FilterContext &context) {
    const int32_t fontSize = context.FilterCaptionFontsize;
    TextRect box = {-margin, -margin, width + margin, fontSize + margin};
    const int32_t height = DrawTextSpaced(drawing, text, &box, format | kTextWordBreak | kTextMeasure,
                                          context.FilterCaptionCharspace, context.FilterCaptionLinespace);
    if ((format & kTextSingleLine) != 0) return height;
    const int32_t fontHeight = FontHeight(drawing.font);
    return (height + fontHeight - 1) / fontHeight * fontSize;
}

/// The bar as a picture of the source's width, palette and depth, or of 24 bits for true colour.
DibHandle CaptionBar(const ReadView &source, char *text, const FilterContext &context) {
    auto format = static_cast<uint32_t>(context.FilterCaptionJustification);
    if (context.FilterCaptionSingleline != 0) {
        format |= kTextVerticalCenter | kTextSingleLine;
        text[std::strcspn(text, "\r")] = '\0';
    }
    const FontOwner font({context.FilterCaptionFontName, context.FilterCaptionFontsize,
                          context.FilterCaptionBold != 0 ? 700 : 400, context.FilterCaptionItal != 0,
                          context.FilterCaptionAntialias != 0 && TakesSmoothLetters(source)});
    if (!font) return nullptr;
    TextDrawing drawing = {font.font, {static_cast<Color>(context.FilterCaptionTextColor)}, {}};
    const int32_t width = source.width, frame = context.FilterCaptionFramesize;
    const int32_t margin = frame + context.FilterCaptionPadding;
    const int32_t textHeight = MeasuredHeight(drawing, text, format, width, margin, context);
    const int32_t height = textHeight + 2 * margin;
    GdiCanvas canvas;
    if (textHeight == 0 || !GdiCanvasOpen(width, height, &canvas)) return nullptr;

    const RectangleShape whole(canvas.Bounds());
    GdiCanvasPaint(canvas, whole, context.paperColor);
    GdiCanvasPaint(canvas, InsideFrame(whole, frame), static_cast<Color>(context.FilterCaptionFramecolor));
    drawing.surface = SurfaceOf(canvas);
    TextRect box = {margin, margin, width - margin, height - margin};
    if (DrawTextSpaced(drawing, text, &box, format | kTextWordBreak, context.FilterCaptionCharspace,
                       context.FilterCaptionLinespace) == 0)
        return nullptr;
    if (source.bits > 8) {
        GdiCanvasClose(&canvas, true);
        return canvas.picture.Release();
    }
    Palette768 palette;
    DibReadPalette(source, &palette);
    return RemapNearest(canvas.lock->view, palette, source.bits);
}

DibHandle CaptionKernel(const ReadView &source, FilterContext &context) {
    char text[1024];
    TextMacroExpand(text, context.FilterCaptionString, sizeof text, source.width, source.height);
    const LockedDib bar(CaptionBar(source, text, context));
    if (!bar) return nullptr;
    const int32_t width = source.width, height = source.height, barHeight = bar.View().height;
    if (height > INT32_MAX - barHeight) return nullptr;
    LockedDib result(DibCreateLike(source, width, height + barHeight));
    if (!result) return nullptr;
    DibCopyRect(result.View(), 0, 0, source, 0, 0, width, height);
    DibCopyRect(result.View(), 0, height, bar, 0, 0, width, barHeight);
    return result.Release();
}

} // namespace

extern constexpr Filter kCaption = MakeFilter<kPage>(CaptionKernel);

} // namespace lmf
