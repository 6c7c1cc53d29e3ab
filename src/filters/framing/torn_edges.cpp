// Torn Edges: tears the chosen sides of the picture off like paper, which lies on paper and throws a shadow there.
// A tear is a ragged line with finer raggedness on it: Linear dev is how far along the side it goes between two turns
// and Lateral dev how far inwards. Hairline adds a thin light rim where the paper shows its fibres, Outline a line of
// one pixel along the tear. Shdw dens, Shdw soft and Shdw offset are the shadow's strength, softness and distance
// towards the lower right; the tears there lie further inside, so that the shadow has room.
// All lengths but the softness count in 500ths of the picture's shorter side, so that a Random seed gives the same tear
// at every size. With Alpha on the picture stays, and the second picture becomes transparent where it is torn off.
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "common/random.h"
#include "engine/filter.h"
#include "image/blur/soft_shadow.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/core/dib_ops.h"
#include "image/core/div255.h"
#include "image/draw/row_painter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    NumberEdit(975, "Random seed:", &P::FilterTornSeed, {1000, 32760})
        .In(Unit::Seed)
        .Help("Number of the tear: the same one gives the same tear."),
    Slider(970, "Shdw dens:", &P::FilterTornShadowDensity, {1, 255})
        .In(Unit::Levels)
        .Help("Makes the shadow darker, up to black."),
    Slider(971, "Shdw soft:", &P::FilterTornShadowSoft, {0, 40})
        .In(Unit::Pixels, 10)
        .Help("Width of the shadow's soft edge."),
    Slider(972, "Shdw offset:", &P::FilterTornShadowOff, {0, 128})
        .In(Unit::Percent, 5)
        .Help("Distance of the shadow, of the picture's shorter side."),
    Slider(973, "Linear dev:", &P::FilterTornLinearDev, {1, 32})
        .In(Unit::Percent, 5)
        .Help("Distance between two turns of the tear, of the picture's shorter side."),
    Slider(974, "Lateral dev:", &P::FilterTornLateralDev, {1, 32})
        .In(Unit::Percent, 5)
        .Help("How far the tear strays inwards, of the picture's shorter side."),
    CheckBox(976, "Hairline", &P::FilterTornHairline).Help("Adds a thin light rim of paper fibers along the tear."),
    CheckBox(977, "Outline", &P::FilterTornOutlineEnable).Help("Draws a line of one pixel along the tear."),
    CheckBox(978, "Shadow", &P::FilterTornShadowEnable).Help("Lets the torn picture throw a shadow on the paper."),
    CheckBox(979, "Alpha", &P::FilterTornAlpha)
        .Help("Makes what is torn off transparent and leaves the picture as it is."),
    ColorButton(980, "Outline", &P::FilterTornOutlineColor)
        .Named("Outline color")
        .Help("Color of the line along the tear."),
    CheckBox(981, "Sides:", &P::FilterTornLeftSide).Named("Left side").Help("Tears the left side."),
    CheckBox(982, "Sides:", &P::FilterTornTopSide).Named("Top side").Help("Tears the top side."),
    CheckBox(983, "Sides:", &P::FilterTornRightSide).Named("Right side").Help("Tears the right side."),
    CheckBox(984, "Sides:", &P::FilterTornBottomSide).Named("Bottom side").Help("Tears the bottom side."),
};
constexpr EnableRule kRules[] = {
    EnabledWhileOn(970, &P::FilterTornShadowEnable), EnabledWhileOn(971, &P::FilterTornShadowEnable),
    EnabledWhileOn(972, &P::FilterTornShadowEnable), EnabledWhileOn(980, &P::FilterTornOutlineEnable),
    EnabledWhileOff(970, &P::FilterTornAlpha),       EnabledWhileOff(971, &P::FilterTornAlpha),
    EnabledWhileOff(972, &P::FilterTornAlpha),       EnabledWhileOff(976, &P::FilterTornAlpha),
    EnabledWhileOff(977, &P::FilterTornAlpha),       EnabledWhileOff(978, &P::FilterTornAlpha),
    EnabledWhileOff(980, &P::FilterTornAlpha),
};

enum Side : uint32_t { kLeft, kTop, kRight, kBottom, kSides };

constexpr int32_t kSamples = 4; ///< of a line, a pixel

/// A length that settings count in: a 500th of the shorter side, but not so small beside the longer one that there
/// would be no end of turns.
double UnitOf(const ReadView &picture) {
    return std::max(std::min(picture.width, picture.height) / 500.0, std::max(picture.width, picture.height) / 8000.0);
}

/// A line's ragged part that starts with a number of its own: adds 0 to `height` to each sample, with turns every
/// `step`, on average. Both are in pixels.
void AddRaggedLine(const BlockArray<float> &line, int64_t samples, double step, double height, uint32_t seed) {
    SeedRandom(seed);
    const auto draw = [] { return static_cast<double>(NextRandom()) / kRandomMax; };
    double start = -step * draw(), end = start, from = 0.0, to = draw() * height;
    for (int64_t i = 0; i < samples; i++) {
        const double at = (static_cast<double>(i) + 0.5) / kSamples;
        while (end <= at) {
            start = end;
            end += step * (0.5 + draw());
            from = to;
            to = draw() * height;
        }
        line.data[i] += static_cast<float>(from + (to - from) * (at - start) / (end - start));
    }
}

/// How far inside the picture two lines run along a side, kSamples times a pixel.
struct Tear {
    BlockArray<float> sheet;     ///< where the paper ends
    BlockArray<float> surface;   ///< where the picture on it ends
    int32_t least = 0, most = 0; ///< whole pixels that both lines lie between

    /// @param length, depth  of the picture along the side and across it
    Tear(Side side, int32_t length, int32_t depth, double unit, double inset, const FilterParameters &settings)
        : sheet(static_cast<uint64_t>(length) * kSamples), surface(static_cast<uint64_t>(length) * kSamples) {
        if (!sheet || !surface) return;
        const int64_t samples = int64_t{length} * kSamples;
        const double step = settings.FilterTornLinearDev * unit, height = settings.FilterTornLateralDev * unit;
        uint32_t seed = static_cast<uint32_t>(settings.FilterTornSeed) * kSides + side;
        // Seeds next to each other give streams that begin alike.
        const auto next = [&seed] { return (seed += 0x10001) * 2654435761u; };
        std::fill_n(sheet.data, samples, static_cast<float>(inset));
        AddRaggedLine(sheet, samples, step, height, next());
        AddRaggedLine(sheet, samples, step / 3, height * 0.3, next());
        AddRaggedLine(sheet, samples, step / 8, height * 0.12, next());
        std::memcpy(surface.data, sheet.data, static_cast<size_t>(samples) * sizeof(float));
        if (settings.FilterTornHairline != 0) {
            AddRaggedLine(surface, samples, step * 0.7, unit * 2.4, next());
            AddRaggedLine(surface, samples, step / 10, unit * 0.9, next());
        }
        const auto limit = static_cast<float>(depth * 0.45);
        float smallest = limit, largest = 0;
        for (int64_t i = 0; i < samples; i++) {
            sheet[i] = std::min(sheet[i], limit);
            surface[i] = std::min(surface[i], limit);
            smallest = std::min(smallest, sheet[i]);
            largest = std::max(largest, surface[i]);
        }
        least = static_cast<int32_t>(smallest);
        most = static_cast<int32_t>(largest) + 1;
    }
    explicit operator bool() const { return sheet && surface; }
};

/// How much of the pixel at `distance` from a side lies inside a line that has these samples there, 0 to 255.
inline int32_t Inside(const float *samples, int32_t distance) {
    float sum = 0.5f / 255.0f * kSamples;
    for (int32_t i = 0; i < kSamples; i++)
        sum += std::min(std::max(static_cast<float>(distance + 1) - samples[i], 0.0f), 1.0f);
    return static_cast<int32_t>(sum * (255.0f / kSamples));
}

LMF_MULTIVERSION
void CutRow(uint8_t *__restrict row, const float *__restrict line, int32_t distance, int32_t width) {
    for (int32_t x = 0; x < width; x++)
        row[x] = static_cast<uint8_t>(
            RoundedDiv255(static_cast<uint16_t>(row[x] * Inside(line + int64_t{x} * kSamples, distance))));
}

/// Cuts what lies outside a line off a coverage.
void Cut(const WriteView &coverage, Side side, const float *line, int32_t least, int32_t most) {
    if (side == kTop || side == kBottom) {
        for (int32_t i = 0; i < std::min(most, coverage.height); i++) {
            uint8_t *row = coverage.Row(side == kTop ? i : coverage.height - 1 - i);
            if (i < least)
                std::fill_n(row, coverage.width, uint8_t{0});
            else
                CutRow(row, line, i, coverage.width);
        }
        return;
    }
    for (int32_t y = 0; y < coverage.height; y++) {
        const float *samples = line + int64_t{y} * kSamples;
        uint8_t *row = coverage.Row(y);
        for (int32_t i = 0; i < std::min(most, coverage.width); i++) {
            uint8_t &pixel = row[side == kLeft ? i : coverage.width - 1 - i];
            pixel = i < least ? uint8_t{0}
                              : static_cast<uint8_t>(RoundedDiv255(static_cast<uint16_t>(pixel * Inside(samples, i))));
        }
    }
}

/// The torn picture as two coverages, and how far its tears reach inwards from each side.
struct Sheet {
    LockedDib sheet, surface;
    int32_t reach[kSides] = {};

    Sheet(const ReadView &picture, const FilterParameters &settings, bool hasShadow)
        : sheet(DibCreateGrey(picture.width, picture.height)), surface(DibCreateGrey(picture.width, picture.height)) {
        if (!sheet || !surface) return;
        for (const LockedDib *coverage : {&sheet, &surface})
            DibFillRect(coverage->View(), 0, 0, picture.width, picture.height, 255);
        const NumberField boxes[kSides] = {&P::FilterTornLeftSide, &P::FilterTornTopSide, &P::FilterTornRightSide,
                                           &P::FilterTornBottomSide};
        const double unit = UnitOf(picture);
        for (const Side side : {kLeft, kTop, kRight, kBottom}) {
            if (settings.*boxes[side] == 0) continue;
            const bool isShaded = hasShadow && (side == kRight || side == kBottom);
            const double inset =
                isShaded ? (settings.FilterTornShadowOff + 2 + settings.FilterTornShadowSoft / 4) * unit : 0.0;
            const bool isUpright = side == kLeft || side == kRight;
            const Tear tear(side, isUpright ? picture.height : picture.width,
                            isUpright ? picture.width : picture.height, unit, inset, settings);
            if (!tear) return;
            Cut(sheet.View(), side, tear.sheet.data, tear.least, tear.most);
            Cut(surface.View(), side, tear.surface.data, tear.least, tear.most);
            reach[side] = tear.most + 1;
        }
        made = true;
    }
    explicit operator bool() const { return made; }

private:
    bool made = false;
};

/// How much of each pixel of the sheet is outline, in 255ths of what there is of it: what a sheet that is smaller by a
/// pixel all around lacks.
void OutlineRow(uint8_t *weights, const ReadView &sheet, int32_t y, int32_t left, int32_t right) {
    const uint8_t *row = sheet.Row(y);
    const uint8_t *above = sheet.Row(std::max(y - 1, 0)), *below = sheet.Row(std::min(y + 1, sheet.height - 1));
    for (int32_t x = left; x < right; x++) {
        const int32_t smaller =
            std::min({row[x], above[x], below[x], row[std::max(x - 1, 0)], row[std::min(x + 1, sheet.width - 1)]});
        weights[x] = static_cast<uint8_t>(row[x] == 0 ? 0 : (row[x] - smaller) * 255 / row[x]);
    }
}

constexpr int32_t kFiberShare = 215; ///< of white in the rim, in 255ths

/// Paints rows of the result; the shadow is empty where there is none.
struct Painter {
    const Sheet &torn;
    const LockedDib &shadow;
    const FilterContext &settings;
    BlockArray<uint8_t> weights, paper;

    Painter(const Sheet &sheet, const LockedDib &thrown, const FilterContext &context, int32_t width)
        : torn(sheet), shadow(thrown), settings(context), weights(static_cast<uint64_t>(width)),
          paper(static_cast<uint64_t>(width) * 3) {}
    explicit operator bool() const { return weights && paper; }

    /// Makes the picture's pixels left <= x < right of row y those of the torn sheet on its paper.
    void Paint(uint8_t *bgr, int32_t y, int32_t left, int32_t right) {
        if (left >= right) return;
        const auto tint = [&](uint8_t *pixels, Color color) {
            TintRow(pixels + left * 3, weights.data + left, right - left, color);
        };
        const ReadView sheet = torn.sheet, surface = torn.surface;
        for (int32_t x = left; x < right; x++)
            weights[x] = static_cast<uint8_t>((255 - surface.Row(y)[x]) * kFiberShare / 255);
        if (settings.FilterTornHairline != 0) tint(bgr, 0xFFFFFF);
        if (settings.FilterTornOutlineEnable != 0) {
            OutlineRow(weights.data, sheet, y, left, right);
            tint(bgr, static_cast<Color>(settings.FilterTornOutlineColor));
        }
        FillPixels(paper.data, 24, left, right, settings.paperColor);
        if (shadow) {
            const uint8_t *thrown = shadow.View().Row(y);
            for (int32_t x = left; x < right; x++)
                weights[x] = static_cast<uint8_t>(thrown[x] * settings.FilterTornShadowDensity / 255);
            tint(paper.data, 0);
        }
        for (int32_t x = left; x < right; x++) {
            const uint8_t covered = sheet.Row(y)[x];
            for (int32_t c = x * 3; c < x * 3 + 3; c++) bgr[c] = MixBytes(paper[c], bgr[c], covered);
        }
    }
};

DibHandle TornEdgesKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const WriteView &to = pass.To();
    for (int32_t y = 0; y < to.height; y++)
        std::memcpy(to.Row(y), pass.From().Row(y), static_cast<size_t>(to.width) * 3);
    const bool hasShadow = context.FilterTornShadowEnable != 0 && context.FilterTornAlpha == 0;
    Sheet torn(source, context, hasShadow);
    if (!torn) return nullptr;
    if (context.FilterTornAlpha != 0) {
        ReplaceSecond(context, AlphaFromCoverage(std::move(torn.sheet), context.second));
        return pass.Finish();
    }
    LockedDib shadow;
    if (hasShadow) {
        const auto distance = static_cast<int32_t>(context.FilterTornShadowOff * UnitOf(source) + 0.5);
        shadow = LockedDib(ThrownShadow(torn.sheet, distance, distance, context.FilterTornShadowSoft));
        if (!shadow) return nullptr;
    }
    Painter painter(torn, shadow, context, to.width);
    if (!painter) return nullptr;
    for (int32_t y = 0; y < to.height; y++) {
        const bool isWhole = y < torn.reach[kTop] || y >= to.height - torn.reach[kBottom];
        const int32_t left = isWhole ? to.width : std::min(torn.reach[kLeft], to.width);
        painter.Paint(to.Row(y), y, 0, left);
        painter.Paint(to.Row(y), y, std::max(to.width - torn.reach[kRight], left), to.width);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kTornEdges = MakeFilter<kPage, kRules>(TornEdgesKernel);

} // namespace lmf
