// Zoom Blur: every pixel becomes the mean of samples on the line from itself towards the middle of the picture, as when
// a lens is zoomed during the exposure. "Displacement" is the step from sample to sample in percent of the distance to
// the middle, "Cycles" the number of samples.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/blur/pixel_sum.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(1080, "Displacement:", &P::FilterZoomBlurDisp, {100, 1000}),
    Slider(1081, "Cycles:", &P::FilterZoomBlurCycles, {4, 40}),
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
static void FillSamples(SampleTable *table, int32_t length, int32_t cycles, float step) {
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

static void BlurThroughPixels(const WriteView &to, const ReadView &from, const SampleTable &columns,
                              const SampleTable &rows, int32_t cycles) {
    for (int32_t y = 0; y < from.height; y++) {
        for (int32_t x = 0; x < from.width; x++) {
            const int32_t count = std::min(columns.inside[x], rows.inside[y]);
            uint32_t red = 0, green = 0, blue = 0;
            for (int32_t i = 0; i < count; i++) {
                const uint32_t pixel = DibGetPixel(from, columns.at[static_cast<int64_t>(x) * cycles + i],
                                                   rows.at[static_cast<int64_t>(y) * cycles + i]);
                red += RedOf(pixel);
                green += GreenOf(pixel);
                blue += BlueOf(pixel);
            }
            const auto divisor = static_cast<uint32_t>(count);
            DibSetPixel(to, x, y, PackColor(red / divisor, green / divisor, blue / divisor));
        }
    }
}

/// 24-bit pictures, a row at a time.
LMF_MULTIVERSION
static void BlurRow(uint8_t *to, int32_t width, const uint8_t *const *sampleRows, int32_t rowsInside,
                    const int32_t *columnAt, const int32_t *columnsInside, int32_t cycles) {
    for (int32_t x = 0; x < width; x++, to += 3, columnAt += cycles) {
        const int32_t count = std::min(columnsInside[x], rowsInside);
        PixelSum sum;
        for (int32_t i = 0; i < count; i++) sum.Add(sampleRows[i] + static_cast<ptrdiff_t>(columnAt[i]) * 3);
        sum.WriteMean(to, kReciprocals[static_cast<size_t>(count)]);
    }
}

static DibHandle ZoomBlurKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width, height = from.height;

    // The pixel itself is always a sample.
    const int32_t cycles = std::max(context.FilterZoomBlurCycles, 1);
    const auto step = static_cast<float>(context.FilterZoomBlurDisp / 100.0);
    SampleTable columns(width, cycles), rows(height, cycles);
    if (!columns || !rows) return nullptr;
    FillSamples(&columns, width, cycles, step);
    FillSamples(&rows, height, cycles, step);

    if (from.bits == 24 && cycles <= kMostPixelsOfSum) {
        const uint8_t *sampleRows[kMostPixelsOfSum];
        for (int32_t y = 0; y < height; y++) {
            for (int32_t i = 0; i < rows.inside[y]; i++)
                sampleRows[i] = from.Row(rows.at[static_cast<int64_t>(y) * cycles + i]);
            BlurRow(to.Row(y), width, sampleRows, rows.inside[y], columns.at.data, columns.inside.data, cycles);
        }
    } else {
        BlurThroughPixels(pass.to, pass.from, columns, rows, cycles);
    }
    return pass.Finish();
}

extern constexpr Filter kZoomBlur = MakeFilter<kPage>(ZoomBlurKernel);

} // namespace lmf
