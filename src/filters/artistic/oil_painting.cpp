// Oil Painting: each pixel becomes the pixel whose luminance is the most frequent one around it, which joins the
// picture into patches like strokes of a brush. Radius is that of the brush, in pixels. What lies outside the picture
// counts as paper, and the top row and the right column become paper.
#include <array>
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "image/core/pixel_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    HundredthsSlider(640, "Radius:", &P::FilterOilpaintRadius, {100, 400})
        .In(Unit::Pixels, 100)
        .Help("Makes the strokes of the brush larger."),
};

uint8_t Luminance(Color color) {
    return static_cast<uint8_t>((3735 * BlueOf(color) + 19235 * GreenOf(color) + 9798 * RedOf(color)) >> 15);
}

constexpr int32_t kWidestReach = 9;
constexpr size_t kMostRows = 2 * kWidestReach + 1;
constexpr size_t kMostSamples = 2 * kWidestReach * kWidestReach + kMostRows;

/// A pixel under the brush, seen from the middle of the brush. Rows count as they lie in memory.
struct Sample {
    int32_t dx, dy;
};

/// The diamond of pixels under the brush. All its rows but the middle one are shifted by a pixel to the right.
struct Brush {
    int32_t reach; ///< pixels from the middle to each side
    size_t sampleCount = 0, rowCount = 0;
    std::array<Sample, kMostSamples> samples; ///< in the order in which they are counted: inwards
    std::array<Sample, kMostRows> firsts;     ///< the leftmost sample of each row
    std::array<Sample, kMostRows> lasts;

    explicit Brush(double radius) : reach(static_cast<int32_t>(2 * std::ceil(radius) + 1.0)) {
        for (int32_t i = 0; i < reach; i++) {
            AddRow(i - reach, 1 - i, 1 + i);
            AddRow(reach - i, 1 - i, 1 + i);
        }
        AddRow(0, -reach, reach);
    }

private:
    void AddRow(int32_t dy, int32_t first, int32_t last) {
        firsts[rowCount] = {first, dy};
        lasts[rowCount++] = {last, dy};
        for (int32_t dx = first; dx <= last; dx++) samples[sampleCount++] = {dx, dy};
    }
};

/// The luminance of the rows that the brush covers, with paper round the picture.
struct LuminanceRows {
    const ReadView &picture;
    const int32_t reach, count;
    const uint8_t paper;
    const ptrdiff_t stride;
    BlockArray<uint8_t> bytes; ///< each row twice, `count` rows apart, so that any `count` rows in turn lie in order

    LuminanceRows(const ReadView &source, int32_t brushReach, Color paperColor)
        : picture(source), reach(brushReach), count(2 * reach + 1), paper(Luminance(paperColor)),
          stride(static_cast<ptrdiff_t>(picture.width) + 2 * reach), bytes(static_cast<uint64_t>(stride * count * 2)) {}
    explicit operator bool() const { return static_cast<bool>(bytes); }

    /// Reads memory row y, which may lie above or below the picture by as much as the brush reaches.
    void Read(int32_t y) {
        uint8_t *row = &bytes[(y + reach) % count * stride];
        std::memset(row, paper, static_cast<size_t>(stride));
        for (int32_t x = 0; x < picture.width && y >= 0 && y < picture.height; x++)
            row[reach + x] = Luminance(DibGetPixel(picture, x, picture.height - 1 - y));
        std::memcpy(row + count * stride, row, static_cast<size_t>(stride));
    }
    /// The first pixel of memory row y, once the rows that the brush covers from there are read.
    const uint8_t *Middle(int32_t y) const { return &bytes[(y % count + reach) * stride + reach]; }
};

/// Counts the luminances under the brush as it moves along a row.
struct Strokes {
    const Brush &brush;
    std::array<ptrdiff_t, kMostSamples> samples; ///< bytes from the middle
    std::array<ptrdiff_t, kMostRows> firsts, lasts;
    alignas(64) uint8_t counts[256];

    Strokes(const Brush &used, ptrdiff_t stride) : brush(used) {
        const auto offset = [&](const Sample &sample) { return sample.dy * stride + sample.dx; };
        for (size_t i = 0; i < brush.sampleCount; i++) samples[i] = offset(brush.samples[i]);
        for (size_t i = 0; i < brush.rowCount; i++) firsts[i] = offset(brush.firsts[i]);
        for (size_t i = 0; i < brush.rowCount; i++) lasts[i] = offset(brush.lasts[i]);
    }

    /// Counts all that is under the brush.
    void Start(const uint8_t *middle) {
        std::memset(counts, 0, sizeof counts);
        for (size_t i = 0; i < brush.sampleCount; i++) counts[middle[samples[i]]]++;
    }
    /// Moves the brush to the next pixel, `middle`.
    void Move(const uint8_t *middle) {
        for (size_t i = 0; i < brush.rowCount; i++) {
            counts[middle[firsts[i] - 1]]--;
            counts[middle[lasts[i]]]++;
        }
    }
    /// The sample that first brings a luminance to the highest count of all. It is the last one of its luminance, and
    /// of several such luminances the one that ends first.
    const Sample &Winner(const uint8_t *middle) {
        uint8_t most = 0, winners = 0;
        for (uint8_t n : counts) most = std::max(most, n);
        for (uint8_t n : counts) winners = static_cast<uint8_t>(winners + (n == most));
        uint8_t passed[kMostSamples];
        size_t passedCount = 0, i = brush.sampleCount - 1;
        for (;; i--) {
            const uint8_t luminance = middle[samples[i]];
            if (counts[luminance] != most) continue;
            if (passedCount + 1 == winners) break;
            counts[luminance] = 0; // until all are found
            passed[passedCount++] = luminance;
        }
        while (passedCount > 0) counts[passed[--passedCount]] = most;
        return brush.samples[i];
    }
};

LMF_MULTIVERSION
void PaintRow(const WriteView &to, const ReadView &from, int32_t y, Strokes &strokes, const uint8_t *middle,
              Color paper) {
    strokes.Start(middle);
    for (int32_t x = 0; x < from.width - 1; x++) {
        if (x > 0) strokes.Move(middle + x);
        const auto [dx, dy] = strokes.Winner(middle + x);
        const int32_t column = x + dx, row = from.height - 1 - (y + dy);
        const bool isInside = column >= 0 && column < from.width && row >= 0 && row < from.height;
        DibSetPixel(to, x, from.height - 1 - y, isInside ? DibGetPixel(from, column, row) : paper);
    }
}

DibHandle OilPaintingKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    const Brush brush(context.FilterOilpaintRadius / 100.0);
    LuminanceRows rows(source, brush.reach, context.paperColor);
    if (!pass || !rows) return nullptr;
    Strokes strokes(brush, rows.stride);
    for (int32_t y = -brush.reach; y < brush.reach; y++) rows.Read(y);
    for (int32_t y = 0; y < source.height - 1; y++) {
        rows.Read(y + brush.reach);
        PaintRow(pass.to, source, y, strokes, rows.Middle(y), context.paperColor);
        DibSetPixel(pass.to, source.width - 1, source.height - 1 - y, context.paperColor);
    }
    DibFillRect(pass.to, 0, 0, source.width, 1, context.paperColor);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kOilPainting = MakeFilter<kPage>(OilPaintingKernel);

} // namespace lmf
