#include <cmath>

#include <gtest/gtest.h>

#include "image/color/palette.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/steps.h"
#include "overlays/text_layout.h"
#include "support/reference.h"

namespace lmf::testing {

/// The filter with its canvas made whole.
static LockedDib MarkedPicture(const ReadView &source, const FilterContext &c) {
    const int32_t width = source.width, height = source.height;
    const bool isColor = source.bits > 8, isTurned = c.FilterPosonlyAutorotate != 0 && height > width;
    const int32_t f = width * height < 4000000 ? 4 : 2, size = isColor || isTurned ? f : 1;
    const int32_t base =
        std::max(std::max(width, height) / 640, 1) * (c.FilterPosonlyBigline != 0 ? 3 : 1) * (isColor ? f : 1);
    const int32_t w = size * (isTurned ? height : width), h = size * (isTurned ? width : height);
    const int32_t mx = w * 6 / 100, my = h * 6 / 100;
    const char *text = c.FilterPosonlyString;
    const FontOwner font({c.FilterPosonlyFontname, std::max(h * 10 / 100, 9), c.FilterPosonlyBold != 0 ? 700 : 500,
                          c.FilterPosonlyItal != 0});
    int32_t cx = 0, cy = 0;
    EXPECT_TRUE(MeasureText(font.font, text, &cx, &cy));
    const float fw = static_cast<float>(w), fh = static_cast<float>(h);
    const float fy = fh * 0.5F - static_cast<float>(my) - static_cast<float>(cy) * 1.75F * 0.5F;
    const float length = std::sqrt(fw * fw + fh * fh) * (fy / fh);
    const auto x = static_cast<int32_t>(std::sqrt(std::max(length * length - fy * fy, 0.0F)));
    const auto y = static_cast<int32_t>(fy);
    const Color grey = static_cast<Color>(c.FilterPosonlyOpacity) * 0x10101;
    const LineEnds ends = c.FilterPosonlyRound != 0 ? LineEnds::kRound : LineEnds::kSquare;
    Palette768 palette;
    const auto entries = static_cast<int32_t>(DibReadPalette(source, &palette));

    LockedDib result(DibClone(source));
    const auto pass = [&](int32_t armPen, int32_t textPen, Color color, int32_t level) {
        GdiCanvas canvas;
        EXPECT_TRUE(GdiCanvasOpen(w, h, &canvas));
        for (int32_t i = 0; i < 4; i++) {
            const bool right = i % 2 != 0, below = i / 2 != 0;
            const auto at = [&](int32_t dx, int32_t dy) { return DrawPoint{right ? w - dx : dx, below ? h - dy : dy}; };
            GdiCanvasPaint(canvas, LineShape(at(mx, my), at(mx + x, my + y), armPen, ends), grey);
        }
        const WriteView &view = canvas.lock->view;
        TextRect box = {(w - cx) / 2 - 12, (h - cy) / 2 - 6, (w - cx) / 2 + cx + 12, (h - cy) / 2 + cy + 6};
        const TextDrawing drawing = {font.font, {grey, textPen}, {view.Row(0), w, h, -int64_t{view.stride}}};
        EXPECT_GT(DrawTextPlain(drawing, text, &box, 0x825), 0);
        const LockedDib mask(isColor ? DibScaleSteps(view, 100 / f, 100 / f) : DibClone(view));
        ForEachPixel(result, [&](int32_t column, int32_t row) {
            const int32_t maskX = isTurned ? height - row - 1 : column, maskY = isTurned ? column : row;
            const uint32_t coverage = DibGetPixel(mask, maskX, maskY) & 255;
            const uint32_t before = DibGetPixel(result, column, row);
            const auto entry = static_cast<uint32_t>(PaletteNearest(level, level, level, palette, entries));
            DibSetPixel(result.View(), column, row,
                        isColor          ? MixBytes(before & 0xFFFFFF, color, coverage)
                        : coverage < 128 ? before
                                         : entry);
        });
    };
    if (c.FilterPosonlyKeyLine != 0) pass(base * 3, base * 2, static_cast<Color>(c.FilterPosonlyKeyColor), 0);
    pass(base, 0, c.paperColor, 255);
    return result;
}

TEST(PositionOnly, MatchesItsDefinition) {
    Trials trials = {.kinds = {Kind::Color, Kind::Alpha, Kind::Grey, Kind::Palette},
                     .sizes = {{1, 1}, {1, 9}, {70, 1}, {40, 30}, {150, 70}, {67, 131}, {30, 200}}};
    ExpectDefinition("Position Only", trials, MarkedPicture);
    trials.rounds = 1;
    trials.kinds = {Kind::Color};
    trials.sizes = {{2000, 2000}, {1999, 2000}}; // four million pixels, and a row's less
    ExpectDefinition("Position Only", trials, MarkedPicture);
}

} // namespace lmf::testing
