// Watermark: prints a faint mark on the picture, a text with macros such as %C for the copyright sign, or a picture.
// Position is the corner or the middle, Horiz. offset and Vert. offset the distance from the edges in percent of the
// picture's size. The text has a font, its size in pixels, Bold, Italic and an Opacity; Effect adds shadows, lights or
// a key line in the Shadow and Highlight colours, shifted by one pixel more for each 48 pixels of the font (a number
// that only the settings file can change). Use image prints the picture of Image instead, where the host can load it.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/alpha_mask.h"
#include "image/core/dib_ops.h"
#include "image/core/div255.h"
#include "overlays/canvas_text.h"
#include "overlays/text_macros.h"
#include "platform/files.h"

namespace lmf {

namespace {

constexpr const char *kEffectNames =
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
    Combo(1034, "Effect:", &P::FilterWatermarkEffect, kEffectNames)
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

enum Position : int32_t { kUpperLeft, kUpperRight, kLowerLeft, kLowerRight, kCenter };

constexpr uint32_t kTextPlaces[] = {kTextLeft, kTextRight, kTextBottom, kTextBottom | kTextRight,
                                    kTextVerticalCenter | kTextCenter};

/// Where copies of the letters stand around them: a bit for each of the nine places, row by row.
enum Places : uint32_t {
    kNowhere = 0,
    kAboveLeft = 1 << 0,
    kAboveRight = 1 << 2,
    kBelowLeft = 1 << 6,
    kBelowRight = 1 << 8,
    kAround = (1 << 9) - 1
};

struct Effect {
    Places shadow, highlight;
};
constexpr Effect kEffects[] = {
    {kNowhere, kNowhere},      {kAboveLeft, kNowhere},    {kAboveRight, kNowhere},   {kBelowLeft, kNowhere},
    {kBelowRight, kNowhere},   {kAround, kNowhere},       {kNowhere, kAboveLeft},    {kNowhere, kAboveRight},
    {kNowhere, kBelowLeft},    {kNowhere, kBelowRight},   {kNowhere, kAround},       {kBelowRight, kAboveLeft},
    {kBelowLeft, kAboveRight}, {kAboveRight, kBelowLeft}, {kAboveLeft, kBelowRight}, {kNowhere, kNowhere},
};

/// A part of a side of the picture.
int32_t PercentOf(int32_t side, int32_t percent) {
    return static_cast<int32_t>(int64_t{side} * percent / 100);
}

/// The host's picture of the mark, which the caller owns; null where there is no such file or no loader.
DibHandle LoadMark(const FilterContext &context) {
    const char *path = context.FilterWatermarkImagePath;
    if (*path == '\0' || context.loadPicture == nullptr || InputFile(path).state != FileState::kOpen) return nullptr;
    return context.loadPicture(context.ownerWindow, path);
}

LMF_MULTIVERSION
void BlendMarkRow(uint8_t *__restrict bgr, const uint8_t *__restrict mark, int64_t pixels) {
    for (int64_t x = 0; x < pixels; x++) {
        for (int64_t c = 0; c < 3; c++) bgr[x * 3 + c] = MixBytes(bgr[x * 3 + c], mark[x * 4 + c], mark[x * 4 + 3]);
    }
}

/// Blends a 32-bit mark by its alpha, with its upper left pixel at (left, top).
void BlendMark(const WriteView &to, const ReadView &mark, int64_t left, int64_t top) {
    const int64_t first = std::max<int64_t>(-left, 0), last = std::min<int64_t>(mark.width, to.width - left);
    const int64_t bottom = std::min<int64_t>(mark.height, to.height - top);
    for (int64_t y = std::max<int64_t>(-top, 0); y < bottom && first < last; y++)
        BlendMarkRow(to.Row(static_cast<int32_t>(top + y)) + (left + first) * 3,
                     mark.Row(static_cast<int32_t>(y)) + first * 4, last - first);
}

DibHandle StampPicture(const ReadView &source, DibHandle picture, const FilterContext &context) {
    const DibReadLock lock(picture);
    LockedDib result(DibToRgb(source));
    if (!lock || !result) return nullptr;
    const ReadView &mark = lock.view;
    const int32_t position = context.FilterWatermarkPos;
    int32_t x = PercentOf(source.width, context.FilterWatermarkXoff);
    int32_t y = PercentOf(source.height, context.FilterWatermarkYoff);
    if (position == kUpperRight || position == kLowerRight) x = source.width - mark.width - x;
    if (position == kLowerLeft || position == kLowerRight) y = source.height - mark.height - y;
    if (position == kCenter) {
        x = (source.width - mark.width) / 2;
        y = (source.height - mark.height) / 2;
    }
    if (mark.bits == 32)
        BlendMark(result.View(), mark, x, y);
    else
        DibCopyRect(result.View(), x, y, mark, 0, 0, mark.width, mark.height);
    return result.Release();
}

/// Draws copies of the letters on a black mask, and takes the letters themselves out of them.
/// @param distance  how far the copies stand off, in pixels
bool DrawCopies(const GdiCanvas &mask, const PlacedText &text, const TextInk &ink, Places places, int32_t distance) {
    for (int32_t i = 0; i < 9; i++) {
        if ((places >> i & 1) == 0) continue;
        const int32_t x = (i % 3 - 1) * distance, y = (i / 3 - 1) * distance;
        PlacedText copy = text;
        copy.box = {text.box.left + x, text.box.top + y, text.box.right + x, text.box.bottom + y};
        if (!CanvasDrawText(mask, copy, ink)) return false;
    }
    return CanvasDrawText(mask, text, {0});
}

/// An 8-bit copy of the second picture.
DibHandle CopySecond(const ReadView &second) {
    Palette768 palette;
    DibReadPalette(second, &palette);
    LockedDib copy(DibCreate(second.width, second.height, &palette, 8));
    if (copy) DibCopyRect(copy.View(), 0, 0, second, 0, 0, second.width, second.height);
    return copy.Release();
}

/// What becomes of the picture and of its second one.
struct Print {
    LockedDib result, second; ///< no second picture where there was none

    /// Lays a colour over the picture by the mask. The second picture opens where the mask covers more.
    /// @return false when memory is short
    bool Lay(const GdiCanvas &mask, Color color) const {
        const ReadView from = mask.lock->view;
        const auto left = static_cast<int32_t>(mask.origin.x), top = static_cast<int32_t>(mask.origin.y);
        const int32_t alphaWidth = second ? std::min(second.View().width - left, from.width) : 0;
        BlockArray<uint8_t> weights(static_cast<uint64_t>(from.width));
        if (!weights) return false;
        for (int32_t y = 0; y < from.height; y++) {
            const uint8_t *row = from.Row(y);
            for (int64_t x = 0; x < from.width; x++) weights[x] = row[x * 3];
            TintRow(result.View().Row(top + y) + int64_t{left} * 3, weights.data, from.width, color);
            if (!second || top + y >= second.View().height) continue;
            uint8_t *alpha = second.View().Row(top + y) + left;
            for (int64_t x = 0; x < alphaWidth; x++) alpha[x] = std::max(alpha[x], weights[x]);
        }
        return true;
    }
};

/// Lays shadow, highlight and letters over the picture, in this order.
bool LayText(const Print &print, const PlacedText &text, const FilterContext &context) {
    const auto level = static_cast<uint32_t>(context.FilterWatermarkOpacity);
    const TextInk ink = {PackColor(level, level, level)};
    const int32_t distance = context.FilterWatermarkFontsize / context.FilterWatermarkKeyFactor + 1;
    const ReadView picture = print.result;
    const Effect &effect = kEffects[context.FilterWatermarkEffect];
    const std::pair<Places, int32_t> copies[] = {{effect.shadow, context.FilterWatermarkShadowColor},
                                                 {effect.highlight, context.FilterWatermarkHighlightColor}};
    GdiCanvas mask;
    if (!OpenTextCanvas(text, ink, distance, picture.width, picture.height, &mask)) return false;
    for (const auto &[places, color] : copies) {
        if (places == kNowhere) continue;
        if (!DrawCopies(mask, text, ink, places, distance) || !print.Lay(mask, static_cast<Color>(color))) return false;
        GdiCanvasPaint(mask, RectangleShape(mask.Bounds()), 0);
    }
    return CanvasDrawText(mask, text, ink) && print.Lay(mask, context.paperColor);
}

DibHandle PrintText(const ReadView &source, FilterContext &context) {
    char text[260];
    TextMacroExpand(text, context.FilterWatermarkString, sizeof text, source.width, source.height);
    const FontOwner font({context.FilterWatermarkFontname, context.FilterWatermarkFontsize,
                          context.FilterWatermarkBold != 0 ? 700 : 400, context.FilterWatermarkItal != 0});
    if (!font) return nullptr;
    const int32_t x = PercentOf(source.width, context.FilterWatermarkXoff);
    const int32_t y = PercentOf(source.height, context.FilterWatermarkYoff);
    const TextRect box = {x, y, source.width - 1 - x, source.height - 1 - y};
    const uint32_t format = kTextPlaces[context.FilterWatermarkPos] | kTextSingleLine | kTextEndEllipsis;
    Print print = {LockedDib(DibToRgb(source)), LockedDib()};
    if (context.second != nullptr) {
        const DibReadLock second(context.second);
        if (!second) return nullptr;
        print.second = LockedDib(CopySecond(second.view));
        if (!print.second) return nullptr;
    }
    if (!print.result || !LayText(print, {font.font, text, box, format}, context)) return nullptr;
    if (print.second) ReplaceSecond(context, print.second.Release());
    return print.result.Release();
}

DibHandle WatermarkKernel(const ReadView &source, FilterContext &context) {
    const DibOwner mark(LoadMark(context));
    const bool isStamp = mark && context.FilterWatermarkImageUse != 0;
    return isStamp ? StampPicture(source, mark.handle, context) : PrintText(source, context);
}

} // namespace

extern constexpr Filter kWatermark = MakeFilter<kPage>(WatermarkKernel);

} // namespace lmf
