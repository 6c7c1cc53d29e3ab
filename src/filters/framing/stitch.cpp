// Stitch: joins the clipboard's picture to this one.
// Mode is the side where it is joined, Gutter the width of a strip of the paper colour between the two, in pixels.
// Resize brings it to the length of the side that it is joined to, in its own proportions; without it the shorter of
// the two stands in the middle, on the paper. The joined picture takes the depth and the palette of this one. In the
// second picture all that is added is opaque.
#include <cstring>

#include "engine/clipboard_picture.h"
#include "engine/filter.h"
#include "image/color/dither.h"
#include "image/color/paper.h"
#include "image/core/dib_ops.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

enum Side : int32_t { kRight, kBelow, kLeft, kAbove };

constexpr PageControl kPage[] = {
    Slider(930, "Gutter:", &P::FilterStitchGutter, {0, 64})
        .In(Unit::Pixels)
        .Help("Width of the strip in the paper color between the two pictures."),
    Combo(931, "Mode:", &P::FilterStitchMode, "Right;Below;Left;Above")
        .Help("The side where the clipboard's picture is joined."),
    CheckBox(932, "Resize", &P::FilterStitchResize)
        .Help("Brings the clipboard's picture to the length of the side that it is joined to."),
};

constexpr uint32_t kOpaque = 0xFF000000;

struct Box {
    int64_t x, y, width, height;
};

/// Where the two pictures lie on the sheet.
struct Layout {
    Box picture, joined;
    int64_t width, height; ///< of the sheet

    bool IsPossible() const { return std::max({width, height, joined.width, joined.height}) <= INT32_MAX; }
};

/// length x to / from to the nearest pixel, at least 1.
int64_t Scaled(int64_t length, int64_t to, int64_t from) {
    return std::max<int64_t>((2 * length * to + from) / (2 * from), 1);
}

Layout LayoutFor(const ReadView &picture, const ReadView &joined, const FilterParameters &settings) {
    const int32_t side = settings.FilterStitchMode;
    const bool inRow = side == kRight || side == kLeft, joinedFirst = side == kLeft || side == kAbove;
    Box first{0, 0, picture.width, picture.height}, second{0, 0, joined.width, joined.height};
    if (settings.FilterStitchResize != 0 && inRow) {
        second.width = Scaled(second.width, first.height, second.height);
        second.height = first.height;
    } else if (settings.FilterStitchResize != 0) {
        second.height = Scaled(second.height, first.width, second.width);
        second.width = first.width;
    }
    Layout layout{first, second, std::max(first.width, second.width), std::max(first.height, second.height)};
    Box &leading = joinedFirst ? layout.joined : layout.picture,
        &trailing = joinedFirst ? layout.picture : layout.joined;
    if (inRow) {
        trailing.x = leading.width + settings.FilterStitchGutter;
        layout.width = trailing.x + trailing.width;
        for (Box *box : {&leading, &trailing}) box->y = (layout.height - box->height) / 2;
    } else {
        trailing.y = leading.height + settings.FilterStitchGutter;
        layout.height = trailing.y + trailing.height;
        for (Box *box : {&leading, &trailing}) box->x = (layout.width - box->width) / 2;
    }
    return layout;
}

/// The sheet with the picture on it and all else in one value.
LockedDib MakeSheet(const ReadView &picture, const Layout &layout, uint32_t fill) {
    LockedDib sheet(DibCreateLike(picture, static_cast<int32_t>(layout.width), static_cast<int32_t>(layout.height)));
    if (!sheet) return sheet;
    const auto x = static_cast<int32_t>(layout.picture.x), y = static_cast<int32_t>(layout.picture.y);
    DibCopyRect(sheet.View(), x, y, picture, 0, 0, picture.width, picture.height);
    DibFillAround(sheet.View(), x, y, picture.width, picture.height, fill);
    return sheet;
}

/// The joined picture as 24-bit colours or, for a grey sheet, in grey; what had to be made for that is held.
struct JoinedPicture {
    LockedDib colors, grey;
    ReadView view;

    /// The view is empty without memory.
    JoinedPicture(const ReadView &joined, bool wantsGrey) : view(joined) {
        if (wantsGrey && DibClassify(view) == kModeGrey) return;
        if (view.bits != 24) {
            colors = LockedDib(ExpandToRgb(view));
            view = colors;
        }
        if (wantsGrey && view.bits == 24) {
            grey = LockedDib(DibToGrey(view));
            view = grey;
        }
    }
};

/// Dithers the joined picture to the colours of the sheet's palette. @return false without memory.
bool JoinPalette(const WriteView &sheet, const ReadView &joined, const Box &box) {
    const auto width = static_cast<int32_t>(box.width), height = static_cast<int32_t>(box.height);
    const LockedDib scaled(DibScaleTo(joined, width, height, kWindowAutomatic));
    if (!scaled) return false;
    Palette768 palette;
    DibReadPalette(sheet, &palette);
    const LockedDib indexed(ErrorDiffuse(scaled, palette, sheet.bits, {}));
    if (!indexed) return false;
    DibCopyRect(sheet, static_cast<int32_t>(box.x), static_cast<int32_t>(box.y), indexed, 0, 0, width, height);
    return true;
}

/// Lays the joined picture on the sheet, opaque where the sheet's pixels have an alpha. @return false without memory.
bool Join(const WriteView &sheet, const ReadView &joined, const Box &box) {
    const size_t pixelBytes = joined.bits / 8, fromBytes = static_cast<size_t>(joined.width) * pixelBytes;
    const size_t toBytes = static_cast<size_t>(box.width) * pixelBytes;
    const auto left = static_cast<int32_t>(box.x), top = static_cast<int32_t>(box.y);
    const auto read = [&](int32_t y, uint8_t *row) { std::memcpy(row, joined.Row(y), fromBytes); };
    const auto write = [&](int32_t y, const uint8_t *row) {
        if (sheet.bits == joined.bits) {
            std::memcpy(sheet.Row(top + y) + static_cast<size_t>(left) * pixelBytes, row, toBytes);
            return;
        }
        for (int32_t x = 0; x < box.width; x++, row += pixelBytes)
            DibSetPixel(sheet, left + x, top + y, PackColor(row[2], row[1], row[0]) | kOpaque);
    };
    return ScaleRows({joined.width, joined.height, joined.bits}, read, static_cast<int32_t>(box.width),
                     static_cast<int32_t>(box.height), kWindowAutomatic, write);
}

DibHandle StitchKernel(const ReadView &source, FilterContext &context) {
    const ClipboardLock clipboard(context);
    if (!clipboard) return nullptr;
    const Layout layout = LayoutFor(source, clipboard.View(), context);
    if (!layout.IsPossible()) return nullptr;
    if (context.runsOnSecond) return MakeSheet(source, layout, kOutside).Release();
    LockedDib sheet = MakeSheet(source, layout, PaperFillValue(context.paperColor, context.mode, source) | kOpaque);
    const JoinedPicture joined(clipboard.View(), context.mode == kModeGrey);
    if (!sheet || joined.view.width == 0) return nullptr;
    const auto join = context.mode == kModePalette ? JoinPalette : Join;
    return join(sheet.View(), joined.view, layout.joined) ? sheet.Release() : nullptr;
}

} // namespace

extern constexpr Filter kStitch = MakeFilter<kPage>(StitchKernel);

} // namespace lmf
