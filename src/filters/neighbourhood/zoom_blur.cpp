// Zoom Blur: every pixel becomes the mean of samples on the line from itself towards the middle of the picture, as when
// a lens is zoomed during the exposure. "Displacement" is the step from sample to sample in percent of the distance to
// the middle, "Cycles" the number of samples. A large step leads past the middle to its other side.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/pixel_mean.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr int32_t kMostCycles = 40;

constexpr PageControl kPage[] = {
    HundredthsSlider(1080, "Displacement:", &P::FilterZoomBlurDisp, {100, 1000})
        .In(Unit::Percent, 100)
        .Help("Step from one averaged pixel to the next, as a share of the distance to the middle of the picture."),
    Slider(1081, "Cycles:", &P::FilterZoomBlurCycles, {4, kMostCycles})
        .Help("How many pixels are averaged for each one; more make longer streaks."),
};

/// Where the samples of each column, or of each row, lie.
struct SampleTable {
    BlockArray<int32_t> at;     ///< sample i of position x is at [x * cycles + i]
    BlockArray<int32_t> inside; ///< of a position, the samples before the first one outside the picture

    SampleTable(int32_t length, int32_t cycles)
        : at(static_cast<uint64_t>(length) * static_cast<uint64_t>(cycles)), inside(static_cast<uint64_t>(length)) {}

    explicit operator bool() const { return at && inside; }
};

/// Fills the table of one axis: sample i is drawn towards the middle by i steps of `step` percent.
void FillSamples(SampleTable *table, int32_t length, int32_t cycles, float step) {
    const int32_t centre = length / 2;
    for (int32_t x = 0; x < length; x++) {
        int32_t *at = table->at.data + static_cast<int64_t>(x) * cycles;
        const double distance = static_cast<float>(x) - static_cast<float>(centre);
        int32_t i = 1;
        at[0] = x;
        for (; i < cycles; i++) {
            const float percent = static_cast<float>(i) * step;
            const double scale = 1.0 - percent / 100.0;
            at[i] = static_cast<int32_t>(distance * scale + centre);
            if (at[i] < 0 || at[i] >= length) break;
        }
        table->inside[x] = i;
    }
}

LMF_MULTIVERSION
void BlurRow(uint8_t *to, int32_t width, const uint8_t *const *sampleRows, int32_t rowsInside, const int32_t *columnAt,
             const int32_t *columnsInside, int32_t cycles) {
    for (int32_t x = 0; x < width; x++, to += 3, columnAt += cycles)
        WriteMean(to, std::min(columnsInside[x], rowsInside),
                  [=](int32_t i) { return sampleRows[i] + static_cast<ptrdiff_t>(columnAt[i]) * 3; });
}

DibHandle ZoomBlurKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const int32_t width = source.width, height = source.height, cycles = context.FilterZoomBlurCycles;
    const auto step = static_cast<float>(context.FilterZoomBlurDisp / 100.0);
    SampleTable columns(width, cycles), rows(height, cycles);
    if (!columns || !rows) return nullptr;
    FillSamples(&columns, width, cycles, step);
    FillSamples(&rows, height, cycles, step);

    for (int32_t y = 0; y < height; y++) {
        const uint8_t *sampleRows[kMostCycles];
        for (int32_t i = 0; i < rows.inside[y]; i++)
            sampleRows[i] = pass.From().Row(rows.at[static_cast<int64_t>(y) * cycles + i]);
        BlurRow(pass.To().Row(y), width, sampleRows, rows.inside[y], columns.at.data, columns.inside.data, cycles);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kZoomBlur = MakeFilter<kPage>(ZoomBlurKernel);

} // namespace lmf
