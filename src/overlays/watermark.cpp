// Watermark: prints a faint mark on the picture, a text with macros such as %C for the copyright sign, or a picture.
// Position is the corner or the middle, Horiz. offset and Vert. offset the distance from the edges in percent of the
// picture's size. The text has a font, its size in pixels, Bold, Italic and an Opacity; Effect adds shadows, lights or
// a key line in the Shadow and Highlight colours, shifted by one pixel more for each 48 pixels of the font (a number
// that only the settings file can change). Use image prints the picture of Image instead, where the host can load it.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr const char *kEffects =
    "None;Shadow UL;Shadow UR;Shadow LL;Shadow LR;Dark key line;Highlight UL;Highlight UR;Highlight LL;Highlight LR;"
    "Light key line;Light upper left;Light upper right;Light lower left;Light lower right";

// A stored effect may be one past the list, which is as good as None. The key factor divides, so it is kept above 0.
constexpr PageControl kPage[] = {
    TextField(1040, "Text:", &P::FilterWatermarkString).Help("The text of the mark; macros such as %C are filled in."),
    FontButton(1035, "Font:", &P::FilterWatermarkFontname).Help("The typeface of the mark."),
    NumberEdit(1036, "Font size:", &P::FilterWatermarkFontsize, {4, 288})
        .In(Unit::Pixels)
        .Help("The height of the letters."),
    CheckBox(1037, "Bold", &P::FilterWatermarkBold).Help("Sets the mark in bold letters."),
    CheckBox(1038, "Italic", &P::FilterWatermarkItal).Help("Sets the mark in slanted letters."),
    Slider(1030, "Horiz. offset:", &P::FilterWatermarkXoff, {0, 20})
        .In(Unit::Percent)
        .Help("How far the mark stands from the left or right edge."),
    Slider(1031, "Vert. offset:", &P::FilterWatermarkYoff, {0, 20})
        .In(Unit::Percent)
        .Help("How far the mark stands from the upper or lower edge."),
    Slider(1032, "Opacity:", &P::FilterWatermarkOpacity, {8, 255})
        .In(Unit::Levels)
        .Help("How much the mark covers the picture; 255 hides what is below it."),
    Combo(1033, "Position:", &P::FilterWatermarkPos, "Upper left;Upper right;Lower left;Lower right;Center")
        .Help("The corner in which the mark stands, or the middle."),
    Combo(1034, "Effect:", &P::FilterWatermarkEffect, kEffects)
        .Stored(0, 15)
        .Help("Adds shadows, lights or a key line to the letters."),
    ColorButton(1042, "Shadow", &P::FilterWatermarkShadowColor).Help("The color of the shadows and of dark key lines."),
    ColorButton(1041, "Highlight", &P::FilterWatermarkHighlightColor)
        .Help("The color of the lights and of light key lines."),
    TextField(1043, "Image:", &P::FilterWatermarkImagePath)
        .Help("The file of the picture that is printed in place of the text."),
    PushButton(1044, "Select..."),
    CheckBox(1045, "Use image", &P::FilterWatermarkImageUse).Help("Prints the picture of Image in place of the text."),
    HiddenNumber(&P::FilterWatermarkKeyFactor, {1, INT32_MAX})
        .In(Unit::Pixels)
        .Help("The shift of shadows and lights grows by a pixel for each so many pixels of letter height."),
};

} // namespace

extern constexpr Filter kWatermark = MakeFilter<kPage>(nullptr);

} // namespace lmf
