// Reflection: shows the lower part of the picture mirrored below it, as on a polished table.
// Portion is the part that is mirrored and Size the height of its reflection, both in percent; Displacement is the gap
// between the two. Contrast, Brightness and Saturation change the reflection, Transparency mixes it with the paper
// colour, and with Gradient on it fades from Gradient start to Gradient end on top of that. Rows at the picture's
// bottom that are within Tolerance of the paper colour are background: they become paper, and the reflection begins
// above them. With a second picture those rows are background that are transparent there, and the reflection goes into
// it as well: it fades into transparency instead of into paper.
#include <cstring>

#include "engine/filter.h"
#include "image/color/hsv.h"
#include "image/color/tone_table.h"
#include "image/core/byte_pass.h"
#include "image/core/dib_ops.h"
#include "image/core/rows.h"
#include "image/draw/row_painter.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(750, "Brightness:", &P::FilterReflectionBrt, {0, 255})
        .Help("Lightens the reflection above 127 and darkens it below."),
    Slider(751, "Contrast:", &P::FilterReflectionCont, {0, 255})
        .Help("Spreads the reflection's tones apart above 127 and brings them together below."),
    Slider(752, "Displacement:", &P::FilterReflectionDisp, {0, 100})
        .In(Unit::Pixels)
        .Help("Gap between the picture and its reflection."),
    Slider(753, "Gradient end:", &P::FilterReflectionGEnd, {0, 100})
        .In(Unit::Percent)
        .Help("How much of the reflection is seen at its far end."),
    Combo(754, "Gradient:", &P::FilterReflectionGrad, "Off;On").Help("Lets the reflection fade with its distance."),
    Slider(755, "Gradient start:", &P::FilterReflectionGStart, {0, 100})
        .In(Unit::Percent)
        .Help("How much of the reflection is seen where it begins."),
    Slider(756, "Portion:", &P::FilterReflectionPort, {1, 100})
        .In(Unit::Percent)
        .Help("How much of the picture is reflected, from its bottom up."),
    Slider(757, "Saturation:", &P::FilterReflectionSat, {0, 200})
        .In(Unit::Percent)
        .Help("Makes the reflection's colors stronger above 100, and weaker as far as grey below."),
    Slider(758, "Size:", &P::FilterReflectionSize, {1, 100})
        .In(Unit::Percent)
        .Help("Height of the reflection, of the part that is reflected."),
    Slider(759, "Tolerance:", &P::FilterReflectionTol, {0, 255})
        .In(Unit::Levels)
        .Help("How far the rows below an object may be from the paper color and still be left out."),
    Slider(760, "Transparency:", &P::FilterReflectionTrans, {0, 100})
        .In(Unit::Percent)
        .Help("How much of the paper shows through the reflection."),
};
constexpr EnableRule kRules[] = {
    EnabledAt(753, &P::FilterReflectionGrad, 1),
    EnabledAt(755, &P::FilterReflectionGrad, 1),
};

/// Where everything lies, in rows.
struct Layout {
    int32_t base = 0;      ///< of the picture without its background at the bottom
    int32_t mirrored = 0;  ///< above `base`
    int32_t start = 0;     ///< of the reflection
    int32_t reflected = 0; ///< of the reflection
    int32_t height = 0;    ///< of the result; 0 where it cannot be

    Layout(int32_t pictureHeight, int32_t baseRow, const FilterParameters &settings)
        : base(baseRow),
          mirrored(std::max(static_cast<int32_t>(int64_t{base} * settings.FilterReflectionPort / 100), 1)),
          reflected(std::max(static_cast<int32_t>(int64_t{mirrored} * settings.FilterReflectionSize / 100), 1)) {
        const int64_t from = int64_t{base} + settings.FilterReflectionDisp;
        if (from + reflected > INT32_MAX) return;
        start = static_cast<int32_t>(from);
        height = std::max(start + reflected, pictureHeight);
    }
};

/// Is no channel of a row's pixels further than `tolerance` from the paper's?
bool IsPaper(const uint8_t *bgr, int32_t width, Color paper, int32_t tolerance) {
    const int32_t channels[3] = {BlueOf(paper), GreenOf(paper), RedOf(paper)};
    for (int32_t x = 0; x < width; x++) {
        for (int32_t c = 0; c < 3; c++)
            if (std::abs(bgr[x * 3 + c] - channels[c]) > tolerance) return false;
    }
    return true;
}

/// Number of the picture's rows that are left when those of background are taken away from its bottom; all of them
/// where there is nothing but background.
template <typename IsBackground>
int32_t BaseAbove(int32_t height, IsBackground isBackground) {
    int32_t base = height;
    while (base > 0 && isBackground(base - 1)) base--;
    return base > 0 ? base : height;
}

/// How much of the reflection's row i is seen, 0 to 255.
int32_t StrengthAt(int32_t i, int32_t rows, const FilterParameters &settings) {
    const double seen = (100 - settings.FilterReflectionTrans) / 100.0;
    if (settings.FilterReflectionGrad == 0) return static_cast<int32_t>(seen * 255.0 + 0.5);
    const double start = settings.FilterReflectionGStart, end = settings.FilterReflectionGEnd;
    const double along = rows > 1 ? static_cast<double>(i) / (rows - 1) : 0.0;
    return static_cast<int32_t>(seen * (start + (end - start) * along) * 2.55 + 0.5);
}

/// What the settings make of the reflection's colours.
struct Look {
    ToneTable tones;
    HsvChange change;
    BlockArray<uint8_t> row;

    Look(const FilterParameters &settings, int32_t width)
        : tones(BuildContrastTable(settings.FilterReflectionCont, settings.FilterReflectionBrt)),
          change{0.0f, 2.0f * (static_cast<float>(settings.FilterReflectionSat) / 200.0f), 1.0f},
          row(static_cast<uint64_t>(width) * 3) {}

    /// A row as it looks; good until the next call. `bgr` is changed, too.
    const uint8_t *Of(uint8_t *bgr, int32_t width) {
        const auto pixels = static_cast<size_t>(width);
        LookUpBytes(row.data, bgr, pixels * 3, tones);
        if (change.saturationScale == 1.0f) return row.data;
        AdjustHsvRow(bgr, row.data, pixels, change);
        return bgr;
    }
};

/// Reads mirrored rows of `from`, scales them and gives them to take(y, row). @return false without memory
bool Mirror(const ReadView &from, const Layout &layout, RowFunction take) {
    const RowFormat format = {from.width, layout.mirrored, from.bits};
    const size_t bytes = static_cast<size_t>(from.width) * (from.bits / 8);
    return ScaleRows(
        format, [&](int32_t y, uint8_t *row) { std::memcpy(row, from.Row(layout.base - 1 - y), bytes); }, from.width,
        layout.reflected, kWindowAutomatic, take);
}

/// The second picture of the result, from a grey one of the picture's size. @return null without memory
DibHandle ReflectAlpha(const ReadView &alpha, const Layout &layout, const FilterParameters &settings) {
    LockedDib result(DibCreateGrey(alpha.width, layout.height));
    if (!result) return nullptr;
    const WriteView &to = result.View();
    DibCopyRect(to, 0, 0, alpha, 0, 0, alpha.width, layout.base);
    const bool good = Mirror(alpha, layout, [&](int32_t y, uint8_t *row) {
        const int32_t strength = StrengthAt(y, layout.reflected, settings);
        uint8_t *line = to.Row(layout.start + y);
        for (int32_t x = 0; x < to.width; x++) line[x] = static_cast<uint8_t>((row[x] * strength + 127) / 255);
    });
    return good ? result.Release() : nullptr;
}

/// @param fades  does the reflection fade into the paper? @return false without memory
bool Reflect(const WriteView &to, const ReadView &from, const Layout &layout, bool fades,
             const FilterContext &context) {
    const int32_t width = from.width;
    Look look(context, width);
    BlockArray<uint8_t> weights(static_cast<uint64_t>(width));
    if (!look.row || !weights) return false;
    for (int32_t y = 0; y < layout.height; y++) {
        if (y < layout.base)
            std::memcpy(to.Row(y), from.Row(y), static_cast<size_t>(width) * 3);
        else if (y < layout.start || y >= layout.start + layout.reflected)
            FillPixels(to.Row(y), 24, 0, width, context.paperColor);
    }
    return Mirror(from, layout, [&](int32_t y, uint8_t *row) {
        const int32_t strength = fades ? StrengthAt(y, layout.reflected, context) : 255;
        std::fill_n(weights.data, width, static_cast<uint8_t>(255 - strength));
        TintRow(to.Row(layout.start + y), look.Of(row, width), weights.data, width, context.paperColor);
    });
}

/// The second picture as a grey one of the picture's size, opaque where it does not reach; empty where there is none.
LockedDib AlphaOf(const ReadView &picture, DibHandle second) {
    const DibReadLock lock(second);
    if (!lock) return LockedDib();
    LockedDib alpha(DibCreateGrey(picture.width, picture.height));
    if (!alpha) return alpha;
    DibFillRect(alpha.View(), 0, 0, picture.width, picture.height, 255);
    DibCopyRect(alpha.View(), 0, 0, lock.view, 0, 0, lock.view.width, lock.view.height);
    return alpha;
}

DibHandle ReflectionKernel(const ReadView &source, FilterContext &context) {
    const LockedDib alpha = AlphaOf(source, context.second);
    if (!alpha && context.second != nullptr) return nullptr;
    const int32_t tolerance = context.FilterReflectionTol;
    BlockArray<uint8_t> row(static_cast<uint64_t>(source.width) * 3);
    if (!row || source.bits <= 8) return nullptr;
    const int32_t base = BaseAbove(source.height, [&](int32_t y) {
        if (alpha) {
            const uint8_t *line = alpha.View().Row(y);
            return std::all_of(line, line + source.width, [&](uint8_t level) { return level <= tolerance; });
        }
        ReadBgrRow(row.data, source, y);
        return IsPaper(row.data, source.width, context.paperColor, tolerance);
    });
    const Layout layout(source.height, base, context);
    BytePass pass(source, source.width, layout.height);
    if (!pass.IsColor() || !Reflect(pass.To(), pass.From(), layout, !alpha, context)) return nullptr;
    if (alpha) {
        const DibHandle reflected = ReflectAlpha(alpha, layout, context);
        if (reflected == nullptr) return nullptr;
        ReplaceSecond(context, reflected);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kReflection = MakeFilter<kPage, kRules>(ReflectionKernel);

} // namespace lmf
