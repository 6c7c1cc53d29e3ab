// Prepress: puts the picture on a larger sheet of the paper colour with the marks that a printer looks for: crop marks,
// alignment marks, ramps of the four inks, colour swatches, a line of information and the date. Each can be left out.
// The information is a text with macros such as %D, in a font of its own, Bold or not. The marks' lines grow with the
// picture, unless the settings file asks for lines of one pixel.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <optional>

#include "engine/filter.h"
#include "image/core/alpha_mask.h"
#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/steps.h"
#include "overlays/canvas_text.h"
#include "overlays/text_macros.h"
#include "platform/system.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(692, "Crop marks", &P::FilterPrepressCropmarks).Help("Draws the lines that show where to cut."),
    CheckBox(693, "Alignment marks", &P::FilterPrepressAlignmentmarks)
        .Help("Draws the crosses by which prints are laid over each other."),
    CheckBox(694, "CMYK swatches", &P::FilterPrepressCmykSwatches).Help("Draws ramps of the four inks."),
    CheckBox(695, "Color swatches", &P::FilterPrepressColorswatches).Help("Draws squares of pure colors."),
    CheckBox(696, "Information", &P::FilterPrepressDetails).Help("Prints the line of information."),
    CheckBox(697, "Date and time", &P::FilterPrepressDate).Help("Prints the date and the time."),
    CheckBox(691, "Bold", &P::FilterPrepressDetailbold).Help("Sets the information in bold letters."),
    FontButton(690, "Font:", &P::FilterPrepressFontname).Help("The typeface of the information."),
    TextField(698, "Text:", &P::FilterPrepressDetailText)
        .Help("The line of information; macros such as %D are filled in."),
    HiddenBool(&P::FilterPrepressOnePixelLines)
        .Help("Keeps the lines of the marks one pixel wide, however large the picture is."),
};

constexpr Color kBlack = 0, kWhite = 0xFFFFFF;

/// Where everything stands on the sheet, in pixels.
struct SheetPlan {
    int64_t pictureWidth, pictureHeight;
    int64_t margin; ///< on every side of the picture
    int64_t width, height;
    int32_t line;   ///< width of the lines
    int64_t gap;    ///< between marks and what they stand beside
    int64_t circle; ///< side of an alignment mark's circle, an even number
    int64_t cell;   ///< side of a swatch; small sheets have none, 0 or below
    int64_t upperRamps, lowerRamps, leftRamps, rightRamps;
    int64_t swatches; ///< top of the colour swatches
    int32_t letters;  ///< height of the letters of the information

    SheetPlan(const ReadView &picture, bool onePixelLines)
        : pictureWidth(picture.width), pictureHeight(picture.height) {
        const int64_t longer = std::max(pictureWidth, pictureHeight);
        margin = longer * 10 / 100;
        width = pictureWidth + 2 * margin;
        height = pictureHeight + 2 * margin;
        line = onePixelLines ? 1 : static_cast<int32_t>(longer / 800 + 1);
        gap = margin / 4;
        circle = gap + gap % 2;
        upperRamps = circle + 2 * gap + margin;
        cell = 3 * circle / 2;
        if (kCells * cell + upperRamps > height / 2) cell = (height / 2 - upperRamps) / kCells;
        lowerRamps = margin - 2 * gap - kCells * cell - circle + pictureHeight;
        leftRamps = margin - 2 * cell;
        rightRamps = cell - margin + width;
        swatches = circle / 2 + margin + gap + pictureHeight;
        letters = static_cast<int32_t>(2 * circle / 3);
    }
    DrawBox Sheet() const { return {0, 0, width, height}; }

    static constexpr int64_t kCells = 7; ///< of a ramp
};

/// Lays a colour over the part of the sheet that a canvas stands for, where the canvas is light. Black gives a dark
/// mark; an ink of two full channels raises these and lowers the third.
/// @return false without memory
bool BlendMark(const WriteView &sheet, const ReadView &mask, DrawPoint place, Color ink) {
    const int32_t width = mask.width;
    BlockArray<uint8_t> coverage(static_cast<uint64_t>(width));
    if (!coverage) return false;
    for (int32_t y = 0; y < mask.height; y++) {
        const uint8_t *from = mask.Row(y);
        for (int32_t x = 0; x < width; x++) coverage[x] = from[static_cast<ptrdiff_t>(x) * 3 + 2];
        TintRow(sheet.Row(static_cast<int32_t>(place.y) + y) + place.x * 3, coverage.data, width, ink);
    }
    return true;
}

// A mark is drawn white on black, and what is black changes nothing: so a canvas need only be as large as the mark. It
// is left out where there is no memory for its canvas, and the others are drawn all the same.

DrawBox Common(const DrawBox &a, const DrawBox &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// Draws a mark that lies in a box of the sheet on a canvas with the sheet's coordinates times `scale`, and lays it
/// over the sheet, reduced by as much.
/// @param paint  draws on the canvas it is given
template <typename Paint>
void DrawMark(const WriteView &sheet, const DrawBox &box, int32_t scale, Color ink, Paint paint) {
    const DrawBox seen = Common(box, {0, 0, sheet.width, sheet.height});
    const int64_t width = seen.Width() * scale, height = seen.Height() * scale;
    if (std::min(width, height) < 1 || std::max(width, height) > INT32_MAX) return;
    GdiCanvas canvas;
    if (!GdiCanvasOpen(static_cast<int32_t>(width), static_cast<int32_t>(height), &canvas,
                       {seen.left * scale, seen.top * scale}))
        return;
    paint(canvas);
    const DrawPoint place = {seen.left, seen.top};
    if (scale == 1) {
        (void)BlendMark(sheet, canvas.lock->view, place, ink);
        return;
    }
    const LockedDib reduced(DibScaleSteps(canvas.lock->view, 100 / scale, 100 / scale));
    if (reduced) (void)BlendMark(sheet, reduced, place, ink);
}

/// Marks with smooth edges are drawn at this multiple of the sheet's size.
constexpr int32_t kFine = 4;

DrawBox Fine(const DrawBox &box) {
    return {box.left * kFine, box.top * kFine, box.right * kFine, box.bottom * kFine};
}

/// A box larger by so much on each side.
DrawBox Grown(const DrawBox &box, int64_t margin) {
    return {box.left - margin, box.top - margin, box.right + margin, box.bottom + margin};
}

/// Lines that go on from the picture's edges. They are black or nothing, so they are painted on the sheet itself.
void DrawCropMarks(const GdiCanvas &sheet, const SheetPlan &plan) {
    const auto line = [&](DrawPoint from, DrawPoint to) {
        GdiCanvasPaint(sheet, LineShape(from, to, plan.line, LineEnds::kRound), kBlack);
    };
    const int64_t right = plan.pictureWidth + plan.margin, bottom = plan.pictureHeight + plan.margin;
    for (int64_t x : {plan.margin, right}) {
        line({x, plan.margin - plan.gap}, {x, plan.gap});
        line({x, bottom + plan.gap}, {x, plan.height - plan.gap});
    }
    for (int64_t y : {plan.margin, bottom}) {
        line({plan.margin - plan.gap, y}, {plan.gap, y});
        line({right + plan.gap, y}, {plan.width - plan.gap, y});
    }
}

/// The parts of one direction that the discs of two alignment marks take: one where they meet, for what is blended
/// twice would be too dark.
struct MarkRange {
    int64_t from[2], to[2];
    int32_t count;

    MarkRange(int64_t first, int64_t second, int64_t circle, int64_t line)
        : from{first - line, second - line}, to{first + circle + line, second + circle + line}, count(2) {
        if (to[0] < from[1]) return;
        to[0] = to[1];
        count = 1;
    }
};

/// A dark disc with a light cross beyond each corner of the picture. A ring and a cross of the same lines in white come
/// first where marks are drawn in full; disc and cross hide them.
void DrawAlignmentMarks(const WriteView &sheet, const SheetPlan &plan) {
    const int64_t before = plan.margin - plan.gap - plan.circle, beyond = plan.margin + plan.gap;
    const int64_t lefts[] = {before, beyond + plan.pictureWidth}, tops[] = {before, beyond + plan.pictureHeight};
    const int32_t pen = kFine * plan.line;
    const auto paint = [&](const GdiCanvas &canvas) {
        for (int64_t top : tops) {
            for (int64_t left : lefts) {
                const DrawBox circle = {left, top, left + plan.circle, top + plan.circle};
                const EllipseShape disc(Grown(Fine(circle), pen));
                GdiCanvasPaint(canvas, disc, kWhite);
                GdiCanvasPaint(canvas, Outline(disc, pen), kBlack);
                const DrawBox cross = Fine(Grown(circle, plan.gap));
                const int64_t x = (cross.left + cross.right) / 2, y = (cross.top + cross.bottom) / 2;
                const auto line = [&](DrawPoint from, DrawPoint to) {
                    GdiCanvasPaint(canvas, LineShape(from, to, pen, LineEnds::kRound), kBlack);
                };
                line({x, cross.top}, {x, cross.bottom});
                line({cross.left, y}, {cross.right, y});
            }
        }
    };
    const MarkRange columns(lefts[0], lefts[1], plan.circle, plan.line);
    const MarkRange rows(tops[0], tops[1], plan.circle, plan.line);
    for (int32_t row = 0; row < rows.count; row++) {
        for (int32_t column = 0; column < columns.count; column++)
            DrawMark(sheet, {columns.from[column], rows.from[row], columns.to[column], rows.to[row]}, kFine, kBlack,
                     paint);
    }
}

/// Draws a line of text in a box of the sheet; without memory it is left out.
void DrawLabel(const GdiCanvas &canvas, TextFont *font, const char *text, const DrawBox &box, uint32_t format,
               Color color) {
    const TextRect rect = {static_cast<int32_t>(box.left), static_cast<int32_t>(box.top),
                           static_cast<int32_t>(box.right), static_cast<int32_t>(box.bottom)};
    (void)CanvasDrawText(canvas, {font, text, rect, format | kTextSingleLine}, {color, 0});
}

/// Steps from full ink to none, one below the other. Without a font they have no labels.
void DrawRamp(const WriteView &sheet, const SheetPlan &plan, DrawPoint place, Color ink, TextFont *font) {
    static constexpr struct {
        Color fill;
        const char *label;
        Color labelColor;
    } kSteps[SheetPlan::kCells] = {
        {0xFFFFFF, "100", kBlack}, {0xF2F2F2, "95", kBlack}, {0xBFBFBF, "75", kBlack}, {0x7F7F7F, "50", kWhite},
        {0x3F3F3F, "25", kWhite},  {0x0C0C0C, "5", kWhite},  {0x000000, "0", kWhite},
    };
    constexpr int64_t kSmallPicture = 800;
    const Color edge = std::max(plan.pictureWidth, plan.pictureHeight) <= kSmallPicture ? 0xA0A0A0 : kWhite;
    const int64_t side = plan.cell;
    const DrawBox ramp = {place.x, place.y, place.x + side, place.y + SheetPlan::kCells * side};
    // Cells of a sheet that has no room for them lie the other way.
    DrawMark(sheet, RectangleShape(ramp).bounds, 1, ink, [&](const GdiCanvas &canvas) {
        DrawBox box = {ramp.left, ramp.top, ramp.right, ramp.top + side};
        for (const auto &step : kSteps) {
            const RectangleShape cell(box);
            GdiCanvasPaint(canvas, cell, step.fill);
            GdiCanvasPaint(canvas, Outline(cell, 1), edge);
            const DrawBox inside = Grown(box, -std::max<int64_t>(side / 10, 2));
            if (font != nullptr) DrawLabel(canvas, font, step.label, inside, kTextBottom, step.labelColor);
            box.top += side;
            box.bottom += side;
        }
    });
}

void DrawRamps(const WriteView &sheet, const SheetPlan &plan) {
    constexpr Color kMagenta = 0xFF00FF, kYellow = 0x00FFFF, kCyan = 0xFFFF00;
    const FontOwner font({"arial", static_cast<int32_t>(plan.cell / 2), 400, false, true});
    DrawRamp(sheet, plan, {plan.leftRamps, plan.upperRamps}, kMagenta, font.font);
    DrawRamp(sheet, plan, {plan.rightRamps, plan.upperRamps}, kYellow, font.font);
    DrawRamp(sheet, plan, {plan.leftRamps, plan.lowerRamps}, kCyan, font.font);
    DrawRamp(sheet, plan, {plan.rightRamps, plan.lowerRamps}, kBlack, font.font);
}

/// Thirty thin wedges, by which smeared ink shows.
void DrawStarTarget(const WriteView &sheet, const DrawBox &box) {
    DrawMark(sheet, box, kFine, kBlack, [&](const GdiCanvas &canvas) {
        const DrawBox fine = Fine(box);
        const DrawPoint centre = {(fine.left + fine.right) / 2, (fine.top + fine.bottom) / 2};
        const auto dx = static_cast<double>(fine.right - centre.x), dy = static_cast<double>(fine.top - centre.y);
        const auto corner = [&](int32_t degrees) -> DrawPoint {
            const double angle = degrees * (std::numbers::pi / 180), cosine = std::cos(angle), sine = std::sin(angle);
            return {static_cast<int64_t>(static_cast<double>(centre.x) + dx * cosine - dy * sine),
                    static_cast<int64_t>(static_cast<double>(centre.y) + dx * sine + dy * cosine)};
        };
        constexpr int32_t kStep = 12, kWedge = 4;
        for (int32_t angle = 0; angle < 360; angle += kStep) {
            const DrawPoint wedge[] = {centre, corner(angle), corner(angle + kWedge)};
            GdiCanvasPaint(canvas, PolygonShape(wedge, PolygonFill::kAlternate), kWhite);
        }
    });
}

/// Squares of pure colours below the picture and, further left, star targets. What would leave the picture's side is
/// left out.
void DrawSwatches(const WriteView &sheet, const SheetPlan &plan) {
    static constexpr Color kColors[] = {0x000000, 0xFF0000, 0xFF00FF, 0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00};
    constexpr int32_t kTargets = 4;
    const int64_t side = plan.cell;
    if (side <= 0) return;
    int64_t x = plan.pictureWidth + plan.margin - plan.gap - side;
    const auto fits = [&] { return x > plan.margin + side; };
    for (Color color : kColors) {
        if (fits())
            DibFillRect(sheet, static_cast<int32_t>(x), static_cast<int32_t>(plan.swatches), static_cast<int32_t>(side),
                        static_cast<int32_t>(side), color);
        x -= side;
    }
    x -= std::max<int64_t>(side / 8, 2);
    for (int32_t i = 0; i < kTargets; i++) {
        if (fits()) DrawStarTarget(sheet, {x, plan.swatches, x + side, plan.swatches + side});
        x -= side;
    }
}

/// "Sunday November 22, 2026 - 12:38:43 AM"; empty where the system has no time.
void TimeText(char *out, size_t room) {
    std::tm time;
    out[0] = '\0';
    if (!LocalTime(SystemTime(), &time)) return;
    const int32_t hour = time.tm_hour % 12;
    std::snprintf(out, room, "%s %s %d, %d - %d:%02d:%02d %s", kWeekdayNames[time.tm_wday], kMonthNames[time.tm_mon],
                  time.tm_mday, time.tm_year + 1900, hour == 0 ? 12 : hour, time.tm_min, time.tm_sec,
                  time.tm_hour < 12 ? "AM" : "PM");
}

/// The lines of text above the picture.
void DrawInformation(const WriteView &sheet, const SheetPlan &plan, const FilterContext &context) {
    const bool isShown[] = {context.FilterPrepressDetails != 0, context.FilterPrepressDate != 0};
    if (!isShown[0] && !isShown[1]) return;
    const FontOwner font(
        {context.FilterPrepressFontname, plan.letters, context.FilterPrepressDetailbold ? 700 : 400, false, true});
    if (!font) return;
    char details[1024], date[128];
    TextMacroExpand(details, context.FilterPrepressDetailText, sizeof details, sheet.width, sheet.height);
    TimeText(date, sizeof date);
    const char *texts[] = {details, date};
    DrawBox box = {plan.margin + plan.gap, plan.gap, plan.width - plan.gap - plan.margin,
                   plan.gap + FontHeight(font.font)};
    for (int32_t i = 0; i < 2; i++) {
        if (!isShown[i]) continue;
        DrawMark(sheet, box, 1, kBlack, [&](const GdiCanvas &canvas) {
            DrawLabel(canvas, font.font, texts[i], box, kTextVerticalCenter | kTextEndEllipsis, kWhite);
        });
        const int64_t height = box.Height();
        box.top += height;
        box.bottom += height;
    }
}

DibHandle PrepressKernel(const ReadView &source, FilterContext &context) {
    const SheetPlan plan(source, context.FilterPrepressOnePixelLines != 0);
    if (std::max(plan.width, plan.height) > INT32_MAX) return nullptr;
    GdiCanvas canvas;
    if (!GdiCanvasOpen(static_cast<int32_t>(plan.width), static_cast<int32_t>(plan.height), &canvas)) return nullptr;
    const WriteView &sheet = canvas.lock->view;
    DibFillRect(sheet, 0, 0, sheet.width, sheet.height, context.paperColor);
    if (context.FilterPrepressCropmarks) DrawCropMarks(canvas, plan);
    if (context.FilterPrepressAlignmentmarks) DrawAlignmentMarks(sheet, plan);
    if (context.FilterPrepressCmykSwatches) DrawRamps(sheet, plan);
    if (context.FilterPrepressColorswatches) DrawSwatches(sheet, plan);
    DrawInformation(sheet, plan, context);
    // At the end, so that no mark lies on the picture.
    DibCopyRect(sheet, static_cast<int32_t>(plan.margin), static_cast<int32_t>(plan.margin), source, 0, 0, source.width,
                source.height);
    GdiCanvasClose(&canvas, true);
    return canvas.picture.Release();
}

} // namespace

extern constexpr Filter kPrepress = MakeFilter<kPage>(PrepressKernel);

} // namespace lmf
