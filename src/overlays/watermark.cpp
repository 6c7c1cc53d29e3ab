// Watermark: prints a faint mark on the picture, a text with macros such as %C for the copyright sign, or a picture.
// Position is the corner or the middle, Horiz. offset and Vert. offset the distance from the edges in percent of the
// picture's size. The text has a font, its size in pixels, Bold, Italic and an Opacity; Effect adds shadows, lights or
// a key line in the Shadow and Highlight colours, shifted by one pixel more for each 48 pixels of the font (a number
// that only the settings file can change). Use image prints the picture of Image instead, where the host can load it.
#include "engine/filter.h"

namespace lmf {

static constexpr const char *kEffects =
    "None;Shadow UL;Shadow UR;Shadow LL;Shadow LR;Dark key line;Highlight UL;Highlight UR;Highlight LL;Highlight LR;"
    "Light key line;Light upper left;Light upper right;Light lower left;Light lower right";

// A stored effect may be one past the list, which is as good as None. The key factor divides, so it is kept above 0.
static constexpr PageControl kPage[] = {
    TextField(1040, "Text:", &P::FilterWatermarkString),
    FontButton(1035, "Font:", &P::FilterWatermarkFontname),
    NumberEdit(1036, "Font size:", &P::FilterWatermarkFontsize, {4, 288}),
    CheckBox(1037, "Bold", &P::FilterWatermarkBold),
    CheckBox(1038, "Italic", &P::FilterWatermarkItal),
    Slider(1030, "Horiz. offset:", &P::FilterWatermarkXoff, {0, 20}),
    Slider(1031, "Vert. offset:", &P::FilterWatermarkYoff, {0, 20}),
    Slider(1032, "Opacity:", &P::FilterWatermarkOpacity, {8, 255}),
    Combo(1033, "Position:", &P::FilterWatermarkPos, "Upper left;Upper right;Lower left;Lower right;Center"),
    Combo(1034, "Effect:", &P::FilterWatermarkEffect, kEffects).Stored(0, 15),
    ColorButton(1042, "Shadow", &P::FilterWatermarkShadowColor),
    ColorButton(1041, "Highlight", &P::FilterWatermarkHighlightColor),
    TextField(1043, "Image:", &P::FilterWatermarkImagePath),
    CheckBox(1045, "Use image", &P::FilterWatermarkImageUse),
    HiddenNumber(&P::FilterWatermarkKeyFactor, {1, INT32_MAX}),
};
extern constexpr Filter kWatermark = MakeFilter<kPage>(nullptr);

} // namespace lmf
