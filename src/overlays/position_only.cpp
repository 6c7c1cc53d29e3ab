// Position Only: marks a picture as a placeholder, with a large cross and a label in the paper colour.
// Text is the label, in which macros such as %D are expanded; it has a font, Bold and Italic. Key line draws cross and
// label on a wider stroke in Key color, Heavy key line thrice as wide. Auto-rotate turns the label on tall
// pictures. Opacity is that of the whole mark. The ends of the cross are round, unless the settings file says
// otherwise.
//
// Cross and label are drawn on a canvas of four times the picture's size, or twice from four million pixels on, and
// shrunk to a mask by which their colour is laid on. In pictures with a palette the canvas is the mask itself.
#include <array>
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/color/palette.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/geometry/transpose.h"
#include "image/scale/steps.h"
#include "overlays/canvas_text.h"
#include "overlays/text_macros.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    TextField(671, "Text:", &P::FilterPosonlyString)
        .Help("The label of the placeholder; macros such as %D are filled in."),
    FontButton(670, "Font:", &P::FilterPosonlyFontname).Help("The typeface of the label."),
    CheckBox(672, "Bold", &P::FilterPosonlyBold).Help("Sets the label in bold letters."),
    CheckBox(673, "Italic", &P::FilterPosonlyItal).Help("Sets the label in slanted letters."),
    ColorButton(674, "Key color", &P::FilterPosonlyKeyColor)
        .Help("The color of the wider stroke behind cross and label."),
    CheckBox(675, "Key line", &P::FilterPosonlyKeyLine)
        .Help("Draws cross and label on a wider stroke in the key color."),
    CheckBox(676, "Heavy key line", &P::FilterPosonlyBigline).Help("Makes the wider stroke three times as wide."),
    CheckBox(678, "Auto-rotate", &P::FilterPosonlyAutorotate)
        .Help("Turns the label on pictures that are taller than wide."),
    Slider(677, "Opacity:", &P::FilterPosonlyOpacity, {32, 255})
        .In(Unit::Levels)
        .Help("How much the mark covers the picture; 255 hides what is below it."),
    HiddenBool(&P::FilterPosonlyRound).Help("Gives the cross round ends."),
};

/// From this many pixels on the canvas has twice the picture's sides, below four times.
constexpr int64_t kManyPixels = 4000000;

/// The canvas that cross and label are drawn on.
struct Layout {
    int32_t width, height;               ///< of the canvas
    int32_t coveredWidth, coveredHeight; ///< of the part, from the upper left corner on, that reaches the picture
    int32_t percent;                     ///< what the canvas is shrunk to
    int32_t line;                        ///< width of the thin lines
    bool isTurned;                       ///< the canvas is a quarter turn from the picture
};

/// @return false where the canvas would be too large
bool LayOut(const ReadView &source, bool isColor, const FilterContext &context, Layout *layout) {
    const int64_t width = source.width, height = source.height;
    const bool isTurned = context.FilterPosonlyAutorotate != 0 && height > width;
    const int64_t factor = width * height < kManyPixels ? 4 : 2;
    const int64_t shrunk = isColor ? factor : 1, enlarged = isColor || isTurned ? factor : 1;
    const int64_t across = isTurned ? height : width, down = isTurned ? width : height;
    if (std::max(across, down) * factor > INT32_MAX) return false;
    int64_t line = std::max<int64_t>(std::max(width, height) / 640, 1) * shrunk;
    if (context.FilterPosonlyBigline != 0) line *= 3;
    const auto whole = [](int64_t number) { return static_cast<int32_t>(number); };
    *layout = {whole(across * enlarged),
               whole(down * enlarged),
               whole(across * shrunk),
               whole(down * shrunk),
               whole(100 / shrunk),
               whole(line),
               isTurned};
    return true;
}

int32_t LabelHeight(const Layout &layout) {
    return static_cast<int32_t>(std::max<int64_t>(int64_t{layout.height} * 10 / 100, 9));
}

/// The label in a box around the middle of the canvas.
TextRect LabelBox(const Layout &layout, int32_t width, int32_t height) {
    constexpr int32_t kGrowX = 12, kGrowY = 6;
    const int32_t left = (layout.width - width) / 2, top = (layout.height - height) / 2;
    return {left - kGrowX, top - kGrowY, left + width + kGrowX, top + height + kGrowY};
}

using Cross = std::array<LineShape, 4>;

/// The four arms of the cross, from near the corners of the canvas to short of the label.
Cross MakeCross(const Layout &layout, int32_t labelHeight, int32_t pen, LineEnds ends) {
    const int64_t left = int64_t{layout.width} * 6 / 100, right = layout.width - left;
    const int64_t top = int64_t{layout.height} * 6 / 100, bottom = layout.height - top;
    const auto width = static_cast<float>(layout.width), height = static_cast<float>(layout.height);
    // An arm goes down by half of what the label leaves, and is as long in that as the canvas's diagonal is in all.
    const float y = height * 0.5F - static_cast<float>(top) - static_cast<float>(labelHeight) * 1.75F * 0.5F;
    const float length = std::sqrt(width * width + height * height) * (y / height);
    const float x = std::sqrt(std::max(length * length - y * y, 0.0F));
    const auto dx = static_cast<int64_t>(x), dy = static_cast<int64_t>(y);
    return {LineShape({left, top}, {left + dx, top + dy}, pen, ends),
            LineShape({right, top}, {right - dx, top + dy}, pen, ends),
            LineShape({left, bottom}, {left + dx, bottom - dy}, pen, ends),
            LineShape({right, bottom}, {right - dx, bottom - dy}, pen, ends)};
}

/// What is laid on the picture: the key line or what stands on it.
struct Drawing {
    Cross cross;
    uint8_t level;   ///< of lines and letters
    GdiCanvas label; ///< the part of the canvas with the label on it, and with the cross where it passes

    /// Draws the label.
    /// @return false when memory is short
    bool Open(const Layout &layout, const PlacedText &text, int32_t pen) {
        const TextInk ink = {PackColor(level, level, level), pen};
        if (!OpenTextCanvas(text, ink, 0, layout.coveredWidth, layout.coveredHeight, &label)) return false;
        for (const LineShape &arm : cross) GdiCanvasPaint(label, arm, ink.color);
        return CanvasDrawText(label, text, ink);
    }
    /// Row y of the canvas, a byte a pixel.
    void Row(int32_t y, uint8_t *row, int32_t width) const {
        std::memset(row, 0, static_cast<size_t>(width));
        for (const LineShape &arm : cross) {
            ForEachSpan(arm, y, [&](const RowSpan &span) {
                const int64_t left = std::max<int64_t>(span.left, 0), right = std::min<int64_t>(span.right, width);
                if (left < right) std::memset(row + left, level, static_cast<size_t>(right - left));
            });
        }
        const ReadView text = label.lock->view;
        const int64_t line = y - label.origin.y;
        if (line < 0 || line >= text.height) return;
        const uint8_t *from = text.Row(static_cast<int32_t>(line));
        for (int64_t x = 0; x < text.width; x++) row[label.origin.x + x] = from[x * 3];
    }
};

/// Writes an index where the mask covers at least half.
LMF_MULTIVERSION
void StoreCovered(uint8_t *__restrict indexes, const uint8_t *__restrict mask, int64_t count, uint8_t entry) {
    for (int64_t i = 0; i < count; i++) indexes[i] = mask[i] < 128 ? indexes[i] : entry;
}

/// What a mask leaves on the picture.
struct Paint {
    bool isColor;
    Color color;   ///< mixed into colours
    uint8_t entry; ///< takes the place of indexes that are at least half covered

    void Lay(uint8_t *pixels, const uint8_t *mask, int32_t count) const {
        if (isColor) return TintRow(pixels, mask, count, color);
        StoreCovered(pixels, mask, count, entry);
    }
};

/// Calls take(y, row) for each row of the mask.
/// @return false when memory is short
template <typename Take>
bool ForEachMaskRow(const Layout &layout, const Drawing &drawing, Take take) {
    const RowFormat canvas = {layout.coveredWidth, layout.coveredHeight, 8};
    const auto draw = [&](int32_t y, uint8_t *row) { drawing.Row(y, row, canvas.width); };
    if (layout.percent < 100) return ShrinkRows(canvas, draw, layout.percent, layout.percent, take);
    BlockArray<uint8_t> row(static_cast<uint64_t>(canvas.width));
    for (int32_t y = 0; row && y < canvas.height; y++) {
        draw(y, row.data);
        take(y, row.data);
    }
    return static_cast<bool>(row);
}

/// @return false when memory is short
bool LayOn(const WriteView &to, const Layout &layout, const Drawing &drawing, const Paint &paint) {
    const int32_t height = to.height;
    if (!layout.isTurned)
        return ForEachMaskRow(layout, drawing,
                              [&](int32_t y, const uint8_t *mask) { paint.Lay(to.Row(y), mask, to.width); });

    // The mask's rows are the picture's columns, from the bottom up: a block of them at a time is turned into rows.
    constexpr int32_t kBlock = 64;
    BlockArray<uint8_t> masks(static_cast<uint64_t>(height) * kBlock), rows(static_cast<uint64_t>(height) * kBlock);
    if (!masks || !rows) return false;
    return ForEachMaskRow(layout, drawing, [&](int32_t x, const uint8_t *mask) {
        const int32_t count = x % kBlock + 1;
        std::memcpy(masks.data + int64_t{count - 1} * height, mask, static_cast<size_t>(height));
        if (count < kBlock && x + 1 < to.width) return;
        TransposeBytes(rows.data + int64_t{height - 1} * kBlock, -kBlock, masks.data, height, count, height);
        const ptrdiff_t left = static_cast<ptrdiff_t>(x + 1 - count) * (to.bits / 8);
        for (int32_t y = 0; y < height; y++) paint.Lay(to.Row(y) + left, rows.data + int64_t{y} * kBlock, count);
    });
}

DibHandle PositionOnlyKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    Layout layout;
    if (!pass || !LayOut(source, pass.IsColor(), context, &layout)) return nullptr;
    const auto rowBytes = static_cast<size_t>(source.width) * static_cast<size_t>(pass.Channels());
    for (int32_t y = 0; y < source.height; y++) std::memcpy(pass.To().Row(y), pass.From().Row(y), rowBytes);

    char text[260];
    TextMacroExpand(text, context.FilterPosonlyString, sizeof text, source.width, source.height);
    const FontOwner font({context.FilterPosonlyFontname, LabelHeight(layout),
                          context.FilterPosonlyBold != 0 ? 700 : 500, context.FilterPosonlyItal != 0});
    int32_t labelWidth, labelHeight;
    if (!font || !MeasureText(font.font, text, &labelWidth, &labelHeight)) return nullptr;
    const PlacedText label = {font.font, text, LabelBox(layout, labelWidth, labelHeight),
                              kTextCenter | kTextVerticalCenter | kTextSingleLine};
    const LineEnds ends = context.FilterPosonlyRound != 0 ? LineEnds::kRound : LineEnds::kSquare;

    Palette768 palette;
    const auto entries = static_cast<int32_t>(DibReadPalette(source, &palette));
    const auto paint = [&](Color color, int32_t level) {
        const int32_t entry = pass.IsColor() ? 0 : PaletteNearest(level, level, level, palette, entries);
        return Paint{pass.IsColor(), color, static_cast<uint8_t>(entry)};
    };
    const auto lay = [&](int32_t armPen, int32_t labelPen, const Paint &laid) {
        Drawing drawing = {
            MakeCross(layout, labelHeight, armPen, ends), static_cast<uint8_t>(context.FilterPosonlyOpacity), {}};
        return drawing.Open(layout, label, labelPen) && LayOn(pass.To(), layout, drawing, laid);
    };
    if (context.FilterPosonlyKeyLine != 0 &&
        !lay(layout.line * 3, layout.line * 2, paint(static_cast<Color>(context.FilterPosonlyKeyColor), 0)))
        return nullptr;
    return lay(layout.line, 0, paint(context.paperColor, 255)) ? pass.Finish() : nullptr;
}

} // namespace

extern constexpr Filter kPositionOnly = MakeFilter<kPage>(PositionOnlyKernel);

} // namespace lmf
