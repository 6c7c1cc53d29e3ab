#include <cmath>
#include <cstring>

#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/steps.h"
#include "overlays/text_layout.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

using P = FilterParameters;

constexpr Color kPaper = 0x90E0C0, kWhite = 0xFFFFFF;

/// The sheet as the rules have it: each mark on a canvas of the whole sheet, four times as large where it is to be
/// smooth, and all passes painted.
struct PlainSheet {
    const int64_t w, h;
    int64_t m, t, q, s, e, cw, ch, y0;
    LockedDib sheet;

    PlainSheet(const ReadView &source, bool onePixel) : w(source.width), h(source.height) {
        m = std::max(h * 10 / 100, w * 10 / 100);
        t = onePixel ? 1 : std::max(w, h) / 800 + 1;
        q = m / 4;
        s = q % 2 != 0 ? q + 1 : q;
        cw = w + 2 * m;
        ch = h + 2 * m;
        y0 = s + 2 * q + m;
        e = 3 * s / 2;
        if (7 * e + y0 > ch / 2) e = (ch / 2 - y0) / 7;
        sheet = LockedDib(DibCreateSolid(static_cast<int32_t>(cw), static_cast<int32_t>(ch), kPaper));
    }
    template <typename Paint>
    void Mark(int32_t scale, Color ink, Paint paint) {
        GdiCanvas canvas;
        ASSERT_EQ(GdiCanvasOpen(static_cast<int32_t>(cw * scale), static_cast<int32_t>(ch * scale), &canvas), 1);
        paint(canvas);
        GdiCanvasClose(&canvas, true);
        const LockedDib large(canvas.picture.Release());
        const LockedDib mask(DibScaleSteps(large, 100 / scale, 100 / scale));
        sheet = PictureLike(sheet, [&](int32_t x, int32_t y) {
            return MixBytes(DibGetPixel(sheet, x, y), ink, DibGetPixel(mask, x, y) & 255);
        });
    }
    void CropMarks() {
        Mark(1, 0, [&](const GdiCanvas &canvas) {
            const auto line = [&](int64_t ax, int64_t ay, int64_t bx, int64_t by) {
                GdiCanvasPaint(canvas, LineShape({ax, ay}, {bx, by}, static_cast<int32_t>(t), LineEnds::kRound),
                               kWhite);
            };
            for (int64_t x : {m, w + m}) {
                line(x, m - q, x, q);
                line(x, m + q + h, x, ch - q);
            }
            for (int64_t y : {m, m + h}) {
                line(m - q, y, q, y);
                line(m + q + w, y, cw - q, y);
            }
        });
    }
    void AlignmentMarks() {
        Mark(4, 0, [&](const GdiCanvas &canvas) {
            const auto pen = static_cast<int32_t>(4 * t);
            for (bool second : {false, true}) {
                for (int64_t y : {m - q - s, m + q + h}) {
                    for (int64_t x : {m - q - s, m + q + w}) {
                        const int64_t grown = second ? pen : 0;
                        const Color color = second ? 0 : kWhite;
                        const EllipseShape disc(
                            DrawBox{4 * x - grown, 4 * y - grown, 4 * (x + s) + grown, 4 * (y + s) + grown});
                        if (second) GdiCanvasPaint(canvas, disc, kWhite);
                        GdiCanvasPaint(canvas, Outline(disc, pen), color);
                        const int64_t cx = 4 * x + 2 * s, cy = 4 * y + 2 * s;
                        GdiCanvasPaint(
                            canvas, LineShape({cx, 4 * (y - q)}, {cx, 4 * (y + s + q)}, pen, LineEnds::kRound), color);
                        GdiCanvasPaint(
                            canvas, LineShape({4 * (x - q), cy}, {4 * (x + s + q), cy}, pen, LineEnds::kRound), color);
                    }
                }
            }
        });
    }
    void Ramps() {
        static constexpr struct {
            const char *label;
            Color fill, text;
        } kSteps[] = {{"100", 0xFFFFFF, 0},     {"95", 0xF2F2F2, 0},     {"75", 0xBFBFBF, 0}, {"50", 0x7F7F7F, kWhite},
                      {"25", 0x3F3F3F, kWhite}, {"5", 0x0C0C0C, kWhite}, {"0", 0, kWhite}};
        const int64_t y1 = m - 2 * q - 7 * e - s + h, left = m - 2 * e, right = e - m + cw;
        const struct {
            int64_t x, y;
            Color ink;
        } strips[] = {{left, y0, 0xFF00FF}, {right, y0, 0x00FFFF}, {left, y1, 0xFFFF00}, {right, y1, 0}};
        const FontOwner font({"arial", static_cast<int32_t>(e / 2), 400, false, true});
        ASSERT_TRUE(font);
        for (const auto &strip : strips) {
            Mark(1, strip.ink, [&](const GdiCanvas &canvas) {
                int64_t y = strip.y;
                for (const auto &step : kSteps) {
                    const RectangleShape cell({strip.x, y, strip.x + e, y + e});
                    GdiCanvasPaint(canvas, cell, step.fill);
                    GdiCanvasPaint(canvas, Outline(cell, 1), std::max(w, h) <= 800 ? 0xA0A0A0 : kWhite);
                    const auto in = static_cast<int32_t>(std::max<int64_t>(e / 10, 2));
                    const auto x = static_cast<int32_t>(strip.x), top = static_cast<int32_t>(y),
                               side = static_cast<int32_t>(e);
                    TextRect box = {x + in, top + in, x + side - in, top + side - in};
                    const WriteView &view = canvas.lock->view;
                    EXPECT_GT(
                        DrawTextPlain({font.font, {step.text, 0}, {view.Row(0), view.width, view.height, -view.stride}},
                                      step.label, &box, kTextSingleLine | kTextBottom),
                        0);
                    y += e;
                }
            });
        }
    }
    void Swatches() {
        const auto top = static_cast<int32_t>(s / 2 + m + q + h), side = static_cast<int32_t>(e);
        int64_t x = w + m - q - e;
        for (Color color : {0x000000, 0xFF0000, 0xFF00FF, 0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00}) {
            if (x > m + e) DibFillRect(sheet.View(), static_cast<int32_t>(x), top, side, side, color);
            x -= e;
        }
        x -= std::max<int64_t>(e / 8, 2);
        for (int32_t star = 0; star < 4; star++, x -= e) {
            if (x <= m + e || e <= 0) continue;
            Mark(4, 0, [&](GdiCanvas &canvas) {
                canvas.clip = {4 * x, 4 * int64_t{top}, 4 * (x + e), 4 * (top + e)};
                const double cx = static_cast<double>(4 * x + 2 * e), cy = static_cast<double>(4 * top + 2 * e);
                const double half = static_cast<double>(2 * e);
                const auto turned = [&](int32_t degrees) -> DrawPoint {
                    const double a = degrees * (3.14159265358979323846 / 180);
                    return {static_cast<int32_t>(cx + half * std::cos(a) + half * std::sin(a)),
                            static_cast<int32_t>(cy + half * std::sin(a) - half * std::cos(a))};
                };
                for (int32_t a = 0; a < 360; a += 12) {
                    const DrawPoint wedge[] = {
                        {static_cast<int64_t>(cx), static_cast<int64_t>(cy)}, turned(a), turned(a + 4)};
                    GdiCanvasPaint(canvas, PolygonShape(wedge, PolygonFill::kAlternate), kWhite);
                }
            });
        }
    }
};

} // namespace

TEST(Prepress, EveryMarkIsThatOfWholeCanvases) {
    static constexpr int32_t kSizes[][2] = {{1, 1},    {10, 1},    {1, 40},   {47, 30},
                                            {300, 20}, {201, 160}, {20, 900}, {260, 340}};
    for (const auto &[width, height] : kSizes) {
        const LockedDib source = RandomPicture(width, height, kModeTrueColor, 1);
        for (int32_t marks = 0; marks < 32; marks = marks == 0 ? 1 : marks * 2) {
            FilterContext context = ContextWith({{&P::FilterPrepressCropmarks, marks & 1},
                                                 {&P::FilterPrepressAlignmentmarks, marks >> 1 & 1},
                                                 {&P::FilterPrepressCmykSwatches, marks >> 2 & 1},
                                                 {&P::FilterPrepressColorswatches, marks >> 3 & 1},
                                                 {&P::FilterPrepressDetails, 0},
                                                 {&P::FilterPrepressDate, 0},
                                                 {&P::FilterPrepressOnePixelLines, marks >> 4 & 1}});
            context.paperColor = kPaper;
            PlainSheet plain(source, marks >= 16);
            if (marks & 17) plain.CropMarks();
            if (marks & 2) plain.AlignmentMarks();
            if (marks & 4) plain.Ramps();
            if (marks & 8) plain.Swatches();
            if (marks >= 16) context.FilterPrepressCropmarks = 1;
            DibCopyRect(plain.sheet.View(), static_cast<int32_t>(plain.m), static_cast<int32_t>(plain.m), source, 0, 0,
                        width, height);
            EXPECT_TRUE(SamePicture(RunKernel("Prepress", source, context), plain.sheet))
                << width << " x " << height << ", marks " << marks;
        }
    }
}

TEST(Prepress, InformationStandsAboveThePictureLineByLine) {
    const LockedDib source = RandomPicture(400, 300, kModeTrueColor, 1);
    const auto firstAndLastDarkRow = [&](bool details, bool date) {
        FilterContext context = ContextWith({{&P::FilterPrepressCropmarks, 0},
                                             {&P::FilterPrepressAlignmentmarks, 0},
                                             {&P::FilterPrepressCmykSwatches, 0},
                                             {&P::FilterPrepressColorswatches, 0},
                                             {&P::FilterPrepressDetails, details},
                                             {&P::FilterPrepressDate, date}});
        std::memset(context.FilterPrepressDetailText, 'W', kTextSize - 1); // ends in an ellipsis
        const LockedDib sheet = RunKernel("Prepress", source, context);
        std::pair<int32_t, int32_t> rows = {-1, -1};
        ForEachPixel(sheet, [&](int32_t x, int32_t y) {
            if (y >= 40 || DibGetPixel(sheet, x, y) == kWhite) return;
            EXPECT_TRUE(x >= 50 && x < 430) << x;
            rows = {rows.first < 0 ? y : rows.first, y};
        });
        return rows;
    };
    // Letters of 6 pixels from row 10 on.
    const auto both = firstAndLastDarkRow(true, true), details = firstAndLastDarkRow(true, false);
    EXPECT_TRUE(details.first >= 10 && details.second < 16);
    EXPECT_TRUE(both.first == details.first && both.second >= 16 && both.second < 22);
    const auto date = firstAndLastDarkRow(false, true);
    EXPECT_TRUE(date.first >= 10 && date.second < 16) << "the date takes the first free line";
    EXPECT_EQ(firstAndLastDarkRow(false, false), (std::pair<int32_t, int32_t>(-1, -1)));
}

} // namespace lmf::testing
