// Shadow: puts the picture on a sheet of the paper colour, larger so that the picture's shadow falls on it as well.
// Size is the distance of the shadow in pixels, Softness the width of its edge, Opacity its strength and Direction the
// corner towards which it falls. Frame draws a line of one pixel around the picture. With Alpha on there is no paper:
// the second picture is opaque where the picture is and as transparent as the shadow elsewhere, and what lies under the
// shadow is its colour. A second picture that came in stays in its place.
#include "engine/filter.h"
#include "image/blur/soft_shadow.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/core/dib_ops.h"
#include "image/draw/row_painter.h"
#include "image/geometry/corner.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(850, "Opacity:", &P::FilterShadowOpacity, {1, 255})
        .In(Unit::Levels)
        .Help("Makes the shadow stronger, up to its full color."),
    Slider(851, "Size:", &P::FilterShadowSize, {1, 128})
        .In(Unit::Pixels)
        .Help("Distance of the shadow from the picture, along both axes."),
    Slider(852, "Softness:", &P::FilterShadowSoft, {0, 40})
        .In(Unit::Pixels, 10)
        .Help("Width of the shadow's soft edge; the sheet grows with it."),
    Combo(853, "Direction:", &P::FilterShadowDirection, kCornerList)
        .Help("The corner of the picture towards which the shadow falls."),
    ColorButton(854, "Color", &P::FilterShadowColor).Help("Color of the shadow."),
    CheckBox(855, "Frame", &P::FilterShadowFrameEnable).Help("Draws a line of one pixel around the picture."),
    ColorButton(856, "Frame", &P::FilterShadowFrameColor)
        .Named("Frame color")
        .Help("Color of the line around the picture."),
    CheckBox(857, "Alpha", &P::FilterShadowAlpha)
        .Help("Makes the sheet around the picture transparent instead of giving it the paper color."),
};
constexpr EnableRule kRules[] = {
    EnabledWhileOn(856, &P::FilterShadowFrameEnable),
};

/// One axis of the sheet.
struct Axis {
    int64_t start, end;  ///< of the picture with its frame
    int64_t shadowStart; ///< of the shadow, which is as long
    int64_t length;

    /// @param outer  length of the picture with its frame
    Axis(int64_t outer, bool fallsForward, int32_t distance, int32_t reach) {
        const int64_t near = std::max(reach - distance, 0), far = int64_t{distance} + reach;
        start = fallsForward ? near : far;
        end = start + outer;
        shadowStart = start + (fallsForward ? distance : -distance);
        length = near + outer + far;
    }
    bool Profile(uint8_t *to, int32_t softness) const {
        return ShadowProfile(to, static_cast<int32_t>(length), static_cast<int32_t>(shadowStart),
                             static_cast<int32_t>(shadowStart + end - start), softness);
    }
};

/// Where everything lies on the sheet.
struct Sheet {
    int32_t frame; ///< width of the line
    Axis x, y;

    Sheet(const ReadView &picture, const FilterParameters &settings)
        : frame(settings.FilterShadowFrameEnable != 0 ? 1 : 0),
          x(int64_t{picture.width} + 2 * frame, Corner(settings.FilterShadowDirection).isRight,
            settings.FilterShadowSize, ShadowReach(settings.FilterShadowSoft)),
          y(int64_t{picture.height} + 2 * frame, Corner(settings.FilterShadowDirection).isLower,
            settings.FilterShadowSize, ShadowReach(settings.FilterShadowSoft)) {}

    bool IsPossible() const { return std::max(x.length, y.length) <= INT32_MAX; }
    int32_t Width() const { return static_cast<int32_t>(x.length); }
    int32_t Height() const { return static_cast<int32_t>(y.length); }
    int32_t Left() const { return static_cast<int32_t>(x.start); }
    int32_t Top() const { return static_cast<int32_t>(y.start); }
    int32_t OuterWidth() const { return static_cast<int32_t>(x.end - x.start); }
    int32_t OuterHeight() const { return static_cast<int32_t>(y.end - y.start); }
};

/// The shadow's weights row by row, 0 to its opacity.
struct ShadowRows {
    BlockArray<uint8_t> across, down, weights;
    uint32_t opacity;
    int32_t level = -1; ///< of `down`, that the weights are for

    ShadowRows(const Sheet &sheet, const FilterParameters &settings)
        : across(static_cast<uint64_t>(sheet.x.length)), down(static_cast<uint64_t>(sheet.y.length)),
          weights(static_cast<uint64_t>(sheet.x.length)), opacity(static_cast<uint32_t>(settings.FilterShadowOpacity)) {
        made = across && down && weights && sheet.x.Profile(across.data, settings.FilterShadowSoft) &&
               sheet.y.Profile(down.data, settings.FilterShadowSoft);
    }
    explicit operator bool() const { return made; }
    /// Makes the weights those of row y. @return false where they were that already
    bool MoveTo(int32_t y, int32_t width) {
        if (down[y] == level) return false;
        level = down[y];
        const uint32_t strength = down[y] * opacity;
        for (int32_t x = 0; x < width; x++) weights[x] = static_cast<uint8_t>((across[x] * strength + 32512) / 65025);
        return true;
    }

private:
    bool made;
};

/// What the second picture of the result is: opaque where the picture lies. @return null without memory
DibHandle AlphaOfSheet(const Sheet &sheet, const FilterContext &context) {
    LockedDib coverage(DibCreateGrey(sheet.Width(), sheet.Height()));
    ShadowRows shadow(sheet, context);
    if (!coverage || !shadow) return nullptr;
    const WriteView &to = coverage.View();
    for (int32_t y = 0; y < to.height; y++) {
        if (context.FilterShadowAlpha != 0) {
            shadow.MoveTo(y, to.width);
            std::copy_n(shadow.weights.data, to.width, to.Row(y));
        } else {
            std::fill_n(to.Row(y), to.width, uint8_t{255});
        }
    }
    DibFillRect(to, sheet.Left(), sheet.Top(), sheet.OuterWidth(), sheet.OuterHeight(), 255);
    return AlphaFromCoverage(std::move(coverage), context.second, sheet.Left() + sheet.frame,
                             sheet.Top() + sheet.frame);
}

/// Paper and shadow over the whole sheet. @return false without memory
bool PaintShadow(const WriteView &to, const Sheet &sheet, const FilterContext &context) {
    if (context.FilterShadowAlpha != 0) {
        for (int32_t y = 0; y < to.height; y++) FillPixels(to.Row(y), 24, 0, to.width, context.FilterShadowColor);
        return true;
    }
    ShadowRows shadow(sheet, context);
    BlockArray<uint8_t> row(static_cast<uint64_t>(to.width) * 3);
    if (!shadow || !row) return false;
    for (int32_t y = 0; y < to.height; y++) {
        if (shadow.MoveTo(y, to.width)) {
            FillPixels(row.data, 24, 0, to.width, context.paperColor);
            TintRow(row.data, shadow.weights.data, to.width, static_cast<Color>(context.FilterShadowColor));
        }
        std::copy_n(row.data, static_cast<size_t>(to.width) * 3, to.Row(y));
    }
    return true;
}

DibHandle ShadowKernel(const ReadView &source, FilterContext &context) {
    const Sheet sheet(source, context);
    if (!sheet.IsPossible()) return nullptr;
    if (context.runsOnSecond) return AlphaOfSheet(sheet, context);
    BytePass pass(source, sheet.Width(), sheet.Height());
    if (!pass.IsColor()) return nullptr;
    const WriteView &to = pass.To();
    if (!PaintShadow(to, sheet, context)) return nullptr;
    DibFrameRect(to, sheet.Left(), sheet.Top(), sheet.OuterWidth(), sheet.OuterHeight(),
                 static_cast<uint32_t>(context.FilterShadowFrameColor), sheet.frame);
    for (int32_t y = 0; y < source.height; y++)
        std::copy_n(pass.From().Row(y), static_cast<size_t>(source.width) * 3,
                    to.Row(sheet.Top() + sheet.frame + y) + (sheet.Left() + sheet.frame) * 3);
    if (context.FilterShadowAlpha != 0 && context.second == nullptr) {
        const DibHandle alpha = AlphaOfSheet(sheet, context);
        if (alpha == nullptr) return nullptr;
        ReplaceSecond(context, alpha);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kShadow = MakeFilter<kPage, kRules>(ShadowKernel);

} // namespace lmf
