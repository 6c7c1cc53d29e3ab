// Raster: the picture as an engraving of parallel lines in its own colours on the paper colour, wide where it is dark.
// Density is the darkness of the lines at their widest: how much of the paper they cover where the picture is black, of
// 255. Size makes the lines coarser: they are Size + 3 pixels apart, since nobody could tell nearer ones from each
// other. Angle is their direction in degrees, counter-clockwise; 0 runs across.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/rows.h"
#include "image/geometry/direction.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(720, "Density:", &P::FilterRasterDensity, {1, 255})
        .In(Unit::Levels)
        .Help("Sets how much of the paper the lines cover where the picture is black."),
    Slider(721, "Size:", &P::FilterRasterSize, {1, 64})
        .In(Unit::Pixels)
        .Help("Moves the lines apart and makes them wider; they are 3 pixels further apart than this."),
    NumberEdit(722, "Angle:", &P::FilterRasterAngle, {0, 359})
        .In(Unit::Degrees)
        .Help("Turns the lines counter-clockwise; 0 runs across the picture."),
};

/// Lengths across the lines, in 256ths of a pixel.
constexpr int32_t kPixel = 256;

/// The tones around each pixel of a row, as the mean of a square window that is moved down the picture. Beyond its
/// edges the picture goes on with its last pixels. The widths of the lines follow these, so that their edges run calmly
/// over details that are finer than the lines.
struct ToneWindow {
    const ReadView &from;
    int32_t radius;
    uint64_t reciprocal; ///< 2^32 / the number of pixels, a little more
    BlockArray<uint32_t> columns;
    BlockArray<uint8_t> grey;

    ToneWindow(const ReadView &picture, int32_t reach)
        : from(picture), radius(reach), columns(static_cast<uint64_t>(from.width)),
          grey(static_cast<uint64_t>(from.width)) {
        const auto side = static_cast<uint64_t>(radius) * 2 + 1;
        reciprocal = (uint64_t{1} << 32) / (side * side) + 1;
        if (!columns || !grey) return;
        std::fill(columns.data, columns.data + from.width, 0u);
        for (int32_t y = -radius - 1; y < radius; y++) Add(y, 1);
    }
    explicit operator bool() const { return columns && grey; }

    void Add(int32_t y, uint32_t factor) {
        GreyRow(grey.data, from.Row(std::clamp(y, 0, from.height - 1)), from.width);
        for (int32_t x = 0; x < from.width; x++) columns[x] += grey[x] * factor;
    }
    /// Calls emit(x, tone) for the pixels of the next row.
    template <typename Emit>
    void NextRow(int32_t y, Emit emit) {
        Add(y + radius, 1);
        Add(y - radius - 1, ~0u);
        const auto column = [&](int32_t x) { return columns[std::clamp(x, 0, from.width - 1)]; };
        uint32_t sum = 0;
        for (int32_t x = -radius; x < radius; x++) sum += column(x);
        for (int32_t x = 0; x < from.width; x++) {
            sum += column(x + radius);
            emit(x, static_cast<uint8_t>(sum * reciprocal >> 32));
            sum -= column(x - radius);
        }
    }
};

/// Half the width of a line for each tone. It shrinks with the cube of the tone, since light areas are drawn in light
/// colours and would come out too pale if half the light took half the width.
struct LineWidths {
    uint16_t half[256];

    LineWidths(int32_t distance, int32_t density) {
        for (int32_t tone = 0; tone < 256; tone++)
            half[tone] =
                static_cast<uint16_t>(int64_t{distance} * kPixel / 2 * density *
                                      (255 * 255 * 255 - tone * tone * tone) / (int64_t{255} * 255 * 255 * 255));
    }
};

/// How much paper shows in each pixel of a row, of 255. A phase is a distance from a line's middle in 2^32ths of the
/// distance of the lines, so that it starts again at each line by itself. What a pixel sees of a line is that of a
/// pixel's width across it.
LMF_MULTIVERSION
void PaperRow(uint8_t *__restrict paper, const uint16_t *__restrict half, int32_t width, uint32_t phase, uint32_t step,
              int32_t distance) {
    for (int32_t x = 0; x < width; x++) {
        const auto turned = static_cast<int32_t>(phase + static_cast<uint32_t>(x) * step);
        const int32_t part = (turned < 0 ? ~turned : turned) >> 16;
        const int32_t away = part * distance >> 8, line = half[x];
        const int32_t first = away - kPixel / 2, last = away + kPixel / 2;
        const int32_t own = std::max(std::min(line, last) - std::max(-line, first), 0);
        const int32_t next = std::max(last - (distance * kPixel - line), 0);
        paper[x] = static_cast<uint8_t>(255 - std::min(own + next, 255));
    }
}

DibHandle RasterKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const ReadView &from = pass.From();
    const int32_t distance = context.FilterRasterSize + 3;
    const LineWidths widths(distance, context.FilterRasterDensity);
    ToneWindow window(from, distance / 2);
    BlockArray<uint16_t> half(static_cast<uint64_t>(from.width));
    BlockArray<uint8_t> paper(static_cast<uint64_t>(from.width));
    if (!window || !half || !paper) return nullptr;

    const Direction direction = DirectionOf(context.FilterRasterAngle);
    const auto stepFor = [&](int32_t part) { return static_cast<uint32_t>(int64_t{part} * 65536 / distance); };
    const uint32_t right = stepFor(direction.sine), down = stepFor(direction.cosine);
    for (int32_t y = 0; y < from.height; y++) {
        window.NextRow(y, [&](int32_t x, uint8_t tone) { half[x] = widths.half[tone]; });
        PaperRow(paper.data, half.data, from.width, static_cast<uint32_t>(y) * down, right, distance);
        TintRow(pass.To().Row(y), from.Row(y), paper.data, from.width, context.paperColor);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kRaster = MakeFilter<kPage>(RasterKernel);

} // namespace lmf
