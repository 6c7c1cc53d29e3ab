#include "sheet.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "console.h"
#include "destinations.h"
#include "filter_run.h"
#include "progress.h"

namespace lmf::host {

namespace {

constexpr uint32_t kGround = 0xEBEBEB; // a wall on which white paper shows
constexpr uint32_t kInk = 0x303030;
constexpr int kLeastResize = 8; // pixels a side that Resize goes down to

// The filters work on so many times the size that is shown: settings count in pixels, and grain, strokes and frames are
// meant for more than a sheet has.
constexpr int kFiner = 2;

/// What all cells share.
struct Studio {
    Library library;
    Limits limits;
    Picture small;    // the copy that all filters run on
    double scale;     // from it to what is shown
    Bitmap clipboard; // the same, for filters that take a second picture
};

/// Where everything stands, in pixels.
struct Plan {
    int width, height; // of the pictures' room in a cell
    int label;         // height of the text below
    int gap;
    int letters; // their size
    int columns, rows;

    [[nodiscard]] int64_t SheetWidth() const { return gap + int64_t{columns} * (width + gap); }
    [[nodiscard]] int64_t SheetHeight() const { return gap + int64_t{rows} * (height + label + gap); }
};

bool CopyBitmap(const Bitmap &from, Bitmap &to, Report &report) {
    if (!from) return true;
    if (!MakeBitmap(to, from.width, from.height, from.bits, report)) return false;
    std::memcpy(to.bytes, from.bytes, LmfBlockSize(from.block));
    return true;
}

bool CopyPicture(const Picture &from, Picture &to, Report &report) {
    return CopyBitmap(from.image, to.image, report) && CopyBitmap(from.alpha, to.alpha, report);
}

// Runs a step with the clock stopped, so that a sheet is the same every time.
bool RunStep(const Studio &studio, const Step &step, Picture &picture, Report &report) {
    FilterCall call = {LinesFor(step, {}, picture.image, report), &studio.clipboard, &studio.limits, {}, 0};
    if (!FindDestinations(*step.filter, call.destinations, report)) return false;
    const FilterOutcome outcome = RunFilter(studio.library, *step.filter, call, {}, picture, report);
    if (outcome.done) return true;
    const bool takesMode = Accepts(*step.filter, ModeName(picture.image));
    const char *wish =
        takesMode && (*step.filter)["needsAlpha"] && !picture.alpha ? " (it takes pictures with alpha)" : "";
    return report.Fail(ErrorText(outcome.errorCode) +
                       (takesMode ? wish : " (it takes " + AcceptedModes(*step.filter) + ")"));
}

// A step of the sheet's own.
Step OwnStep(const char *name, StoredValues values) {
    Step step;
    step.filter = FindFilter(name);
    step.values = std::move(values);
    step.values["CurrentFilter"] = (*step.filter)["row"].dump();
    return step;
}

// Makes a picture smaller by this scale, or as much more as it needs to go into a room.
bool Fit(const Studio &studio, double scale, int width, int height, Picture &picture, Report &report) {
    scale = std::min({scale, double(width) / picture.image.width, double(height) / picture.image.height});
    if (scale >= 1) return true;
    const auto scaled = [&](int side) {
        return std::to_string(std::max(kLeastResize, int(std::lround(side * scale))));
    };
    const Step resize = OwnStep("Resize", {{"FilterResizeByDim", "1"},
                                           {"FilterResizeInterpolate", "1"},
                                           {"FilterResizeConstant", "0"},
                                           {"FilterResizeWidth", scaled(picture.image.width)},
                                           {"FilterResizeDepth", scaled(picture.image.height)}});
    return RunStep(studio, resize, picture, report);
}

// Puts the upper left part of a picture that has room onto the sheet, over the ground.
void Lay(const Picture &picture, int left, int top, int width, int height, Bitmap &sheet) {
    constexpr int kSamples = 4;
    Bytes row(size_t{kSamples} * size_t(picture.image.width));
    for (int y = 0; y < std::min(height, picture.image.height); ++y) {
        FillRow(picture, Layout::kColorAlpha, Order::kBgr, y, row.data());
        uint8_t *out = sheet.Row(top + y) + 3 * left;
        for (int x = 0; x < std::min(width, picture.image.width); ++x)
            for (int c = 0; c < 3; ++c) {
                const uint8_t *pixel = row.data() + ptrdiff_t{kSamples} * x;
                *out++ = uint8_t((pixel[c] * pixel[3] + (kGround & 0xFF) * (255u - pixel[3]) + 127) / 255);
            }
    }
}

bool MakeGround(Bitmap &bitmap, int width, int height, Report &report) {
    if (!MakeBitmap(bitmap, width, height, 24, report)) return false;
    for (int y = 0; y < height; ++y) std::memset(bitmap.Row(y), kGround & 0xFF, 3 * size_t(width));
    return true;
}

// Writes a label in one line, smaller where it is too wide, below a strip of one pixel.
bool WriteLabel(const Studio &studio, const std::string &label, const Plan &plan, Picture &strip, Report &report) {
    std::string text;
    for (const char c : label) text.append(c == '%' ? 2 : 1, c); // a sign that stands for a date or a name
    for (int letters = plan.letters; letters >= std::max(4, plan.letters / 2); --letters) {
        if (!MakeGround(strip.image, plan.width, 1, report)) return false;
        const Step caption = OwnStep("Caption", {{"FilterCaptionString", text},
                                                 {"FilterCaptionFontsize", std::to_string(letters)},
                                                 {"FilterCaptionTextColor", std::to_string(kInk)},
                                                 {"PaperColor", std::to_string(kGround)},
                                                 {"FilterCaptionFramesize", "0"},
                                                 {"FilterCaptionPadding", "2"},
                                                 {"FilterCaptionJustification", "1"}});
        if (!RunStep(studio, caption, strip, report)) return false;
        if (strip.image.height <= plan.label) break;
    }
    return true;
}

// The number of columns that leaves few places empty on a sheet about as wide as a landscape picture.
int ColumnsFor(int cells, const Plan &plan) {
    constexpr double kShape = 1.4;
    const double wanted = std::sqrt(cells * kShape * (plan.height + plan.label + plan.gap) / (plan.width + plan.gap));
    int best = 1;
    double least = 1e9;
    for (int columns = 1; columns <= cells; ++columns) {
        const int rows = (cells + columns - 1) / columns;
        const double empty = double(rows * columns - cells) / cells;
        const double cost = std::fabs(std::log(columns / wanted)) + 2 * empty;
        if (cost < least) best = columns;
        least = std::min(least, cost);
    }
    return best;
}

Plan PlanSheet(const SheetRequest &request, const Studio &studio, int cells) {
    const auto shown = [&](int side) { return std::max(1, int(std::lround(side * studio.scale))); };
    Plan plan = {};
    plan.letters = std::clamp(request.side / 17, 9, 40);
    plan.label = plan.letters * 3 / 2 + 6;
    plan.gap = request.side / 10;
    // So wide that most labels have room.
    plan.width = std::max(shown(studio.small.image.width), plan.letters * 11);
    plan.height = shown(studio.small.image.height);
    plan.columns = request.columns > 0 ? std::min(request.columns, cells) : ColumnsFor(cells, plan);
    plan.rows = (cells + plan.columns - 1) / plan.columns;
    return plan;
}

// Draws what a cell shows and its label at its place.
bool DrawCell(const Studio &studio, const Plan &plan, int place, const std::string &label, Picture &shown,
              Bitmap &sheet, Report &report) {
    Picture strip;
    if (!Fit(studio, studio.scale, plan.width, plan.height, shown, report) ||
        !WriteLabel(studio, label, plan, strip, report))
        return false;
    const int left = plan.gap + place % plan.columns * (plan.width + plan.gap);
    const int top = plan.gap + place / plan.columns * (plan.height + plan.label + plan.gap);
    const int right = std::max(0, (plan.width - shown.image.width) / 2);
    const int down = std::max(0, (plan.height - shown.image.height) / 2);
    Lay(shown, left + right, top + down, plan.width, plan.height, sheet);
    Lay(strip, left, top + plan.height, plan.width, plan.label, sheet);
    return true;
}

bool ReadSmall(const SheetRequest &request, Studio &studio, Report &report) {
    const int side = kFiner * request.side;
    Limits limits = request.limits;
    limits.enough = side;
    if (!ReadPicture(request.input, limits, studio.small, report) || !TurnUpright(studio.small, report) ||
        !Fit(studio, 1, side, side, studio.small, report))
        return false;
    const Bitmap &image = studio.small.image;
    studio.scale = std::min(1.0, double(request.side) / std::max(image.width, image.height));
    return CopyBitmap(image, studio.clipboard, report);
}

} // namespace

int DrawSheet(const SheetRequest &request, size_t &failed) {
    const std::string input = Printable(request.input) + ": ";
    Report report;
    Studio studio;
    studio.limits = request.limits;
    failed = 0;
    if (!studio.library.Load(request.library, report)) {
        Complain(report.error);
        return kFilterFailed;
    }
    if (!ReadSmall(request, studio, report)) {
        Complain(input + report.error);
        return kUnreadable;
    }
    for (const std::string &warning : report.warnings) Complain(input + "warning: " + warning);

    // The filters first: what fails leaves no gap.
    std::vector<std::pair<std::string, Picture>> results(1);
    results[0].first = "Original";
    bool sound = CopyPicture(studio.small, results[0].second, report);
    for (const SheetCell &cell : request.cells) {
        Picture result;
        Report trouble;
        sound = sound && CopyPicture(studio.small, result, report);
        if (sound && RunStep(studio, cell.step, result, trouble)) {
            results.emplace_back(cell.label, std::move(result));
        } else if (sound) {
            Complain(Printable(cell.label) + ": " + trouble.error + "; it is left out");
            ++failed;
        }
    }
    const Plan plan = PlanSheet(request, studio, int(results.size()));
    Picture sheet;
    sheet.metadata.icc = std::move(studio.small.metadata.icc);
    sound = sound && CheckSize(plan.SheetWidth(), plan.SheetHeight(), Limits(), report) &&
            MakeGround(sheet.image, int(plan.SheetWidth()), int(plan.SheetHeight()), report);
    for (size_t i = 0; i < results.size() && sound; ++i)
        sound = DrawCell(studio, plan, int(i), results[i].first, results[i].second, sheet.image, report);
    if (!sound) {
        Complain("the sheet: " + report.error);
        return kFilterFailed;
    }
    report.warnings.clear();
    const bool written = WritePicture(request.output, nullptr, sheet, {}, report);
    for (const std::string &warning : report.warnings) Complain(Printable(request.output) + ": warning: " + warning);
    if (!written) Complain(Printable(request.output) + ": " + report.error);
    return written ? kDone : kUnwritable;
}

} // namespace lmf::host
