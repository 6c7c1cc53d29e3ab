// Shards: throws many small shapes over the picture, each in the mean colour of what it covers and turned at random.
// Density is the share of the picture that they cover, in percent; at 100 no pixel stays as it was. Size is how large
// they are in pixels, Type which shape. The same Random seed throws them to the same places again.
//
// Edges are smooth: each pixel is taken as 4 x 4 samples.
#include <span>

#include "common/multiversion.h"
#include "common/random.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/draw/shapes.h"
#include "image/geometry/direction.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1130, "Density:", &P::FilterShardsDensity, {5, 100})
        .In(Unit::Percent)
        .Help("Sets how much of the picture the shapes cover."),
    Slider(1131, "Size:", &P::FilterShardsSize, {5, 50}).In(Unit::Pixels).Help("Makes the shapes this large."),
    NumberEdit(1132, "Random seed:", &P::FilterShardsSeed, {1000, 32760})
        .In(Unit::Seed)
        .Help("Throws the shapes to other places; the same number gives the same places again."),
    Combo(1133, "Type:", &P::FilterShardsMode, "Line;Triangle;Diamond;Square;Pentagram;Hexagram;")
        .Help("Chooses the shape that is thrown."),
};

constexpr int32_t kSamples = 4; ///< of a pixel in each direction
constexpr int32_t kWhole = kSamples * kSamples;
constexpr int32_t kLargestRadius = 50;            ///< of a shape, in pixels
constexpr int32_t kSide = 2 * kLargestRadius + 4; ///< of the box that holds any shape

/// A corner seen from the middle of a shape: its direction in degrees and its distance in 1000ths of half the size.
struct Corner {
    int32_t degrees, distance;
};
constexpr Corner kLine[] = {{9, 2000}, {171, 2000}, {189, 2000}, {351, 2000}};
constexpr Corner kTriangle[] = {{0, 1100}, {120, 1100}, {240, 1100}};
constexpr Corner kDiamond[] = {{0, 1200}, {90, 700}, {180, 1200}, {270, 700}};
constexpr Corner kSquare[] = {{0, 1000}, {90, 1000}, {180, 1000}, {270, 1000}};
constexpr Corner kPentagram[] = {{0, 1200},  {36, 458},   {72, 1200}, {108, 458},  {144, 1200},
                                 {180, 458}, {216, 1200}, {252, 458}, {288, 1200}, {324, 458}};
constexpr Corner kHexagram[] = {{0, 1100},   {30, 635},  {60, 1100},  {90, 635},  {120, 1100}, {150, 635},
                                {180, 1100}, {210, 635}, {240, 1100}, {270, 635}, {300, 1100}, {330, 635}};
constexpr std::span<const Corner> kTypes[] = {kLine, kTriangle, kDiamond, kSquare, kPentagram, kHexagram};

/// A random whole number below `count`.
int32_t Draw(int32_t count) {
    const int64_t high = NextRandom(), low = NextRandom();
    return static_cast<int32_t>((high << 15 | low) * count >> 30);
}

/// The pixels that a shape covers, in samples.
struct Coverage {
    int32_t left, top, right, bottom; ///< what lies in the picture
    uint8_t samples[kSide * kSide] = {};

    uint8_t *Row(int32_t y) { return samples + (y - top) * (right - left); }

    /// A shape around the middle of pixel (x, y), which it covers whole.
    void Take(std::span<const Corner> corners, int32_t size, int32_t turn, int32_t x, int32_t y,
              const ReadView &picture) {
        DrawPoint points[PolygonShape::kMostPoints];
        for (size_t i = 0; i < corners.size(); i++) {
            const Direction direction = DirectionOf((corners[i].degrees + turn) % 360);
            const auto away = [&](int32_t part) {
                // From 1000ths of half the size to samples, rounded to whole ones.
                const int64_t scale = int64_t{2000} * Direction::kOne;
                const int64_t length = int64_t{corners[i].distance} * size * kSamples * part;
                return (length + (length < 0 ? -scale : scale) / 2) / scale;
            };
            points[i] = {int64_t{x} * kSamples + kSamples / 2 + away(direction.cosine),
                         int64_t{y} * kSamples + kSamples / 2 + away(direction.sine)};
        }
        const PolygonShape shape({points, corners.size()}, PolygonFill::kWinding);
        left = std::clamp(static_cast<int32_t>(shape.bounds.left / kSamples), 0, x);
        top = std::clamp(static_cast<int32_t>(shape.bounds.top / kSamples), 0, y);
        right = std::clamp(static_cast<int32_t>(shape.bounds.right / kSamples) + 1, x + 1, picture.width);
        bottom = std::clamp(static_cast<int32_t>(shape.bounds.bottom / kSamples) + 1, y + 1, picture.height);
        std::fill(samples, Row(bottom), uint8_t{0});
        for (int64_t row = int64_t{top} * kSamples; row < int64_t{bottom} * kSamples; row++) {
            uint8_t *counts = Row(static_cast<int32_t>(row / kSamples));
            ForEachSpan(shape, row, [&](const RowSpan &span) { AddSpan(counts, span); });
        }
        Row(y)[x - left] = kWhole;
    }

private:
    void AddSpan(uint8_t *counts, const RowSpan &span) const {
        const int64_t first = std::max(span.left - int64_t{left} * kSamples, int64_t{0});
        const int64_t end = std::min(span.right, int64_t{right} * kSamples) - int64_t{left} * kSamples;
        if (first >= end) return;
        // As if it covered all of its first pixel and of its last one, less what it doesn't.
        const int64_t firstPixel = first / kSamples, lastPixel = (end - 1) / kSamples;
        for (int64_t i = firstPixel; i <= lastPixel; i++) counts[i] = static_cast<uint8_t>(counts[i] + kSamples);
        counts[firstPixel] = static_cast<uint8_t>(counts[firstPixel] - first % kSamples);
        counts[lastPixel] = static_cast<uint8_t>(counts[lastPixel] - (kSamples - 1 - (end - 1) % kSamples));
    }
};

/// What a shape covers of a picture, added up over its samples.
struct Sums {
    uint32_t blue = 0, green = 0, red = 0, samples = 0;
};

LMF_MULTIVERSION
void AddRow(Sums &sums, const uint8_t *bgr, const uint8_t *weights, int32_t width) {
    uint32_t blue = 0, green = 0, red = 0, samples = 0;
    for (int32_t i = 0; i < width; i++) {
        blue += uint32_t{bgr[i * 3]} * weights[i];
        green += uint32_t{bgr[i * 3 + 1]} * weights[i];
        red += uint32_t{bgr[i * 3 + 2]} * weights[i];
        samples += weights[i];
    }
    sums = {sums.blue + blue, sums.green + green, sums.red + red, sums.samples + samples};
}

/// Lays a colour over a row by the samples that are covered.
LMF_MULTIVERSION
void LayOverRow(uint8_t *__restrict bgr, const uint8_t *__restrict weights, Color color, int32_t width) {
    // In 16 bits, of which a loop takes the most at once.
    const auto mixed = [](uint16_t level, uint16_t other, uint16_t weight) {
        return static_cast<uint8_t>(static_cast<uint16_t>(level * (kWhole - weight) + other * weight + kWhole / 2) /
                                    kWhole);
    };
    for (int32_t i = 0; i < width; i++) {
        bgr[i * 3] = mixed(bgr[i * 3], BlueOf(color), weights[i]);
        bgr[i * 3 + 1] = mixed(bgr[i * 3 + 1], GreenOf(color), weights[i]);
        bgr[i * 3 + 2] = mixed(bgr[i * 3 + 2], RedOf(color), weights[i]);
    }
}

/// Flags the pixels of which that many samples are covered. @return how many had no flag yet
LMF_MULTIVERSION
int32_t FlagRow(uint8_t *__restrict flags, const uint8_t *__restrict weights, int32_t least, int32_t width) {
    int32_t fresh = 0;
    for (int32_t i = 0; i < width; i++) {
        const auto covers = static_cast<uint8_t>(weights[i] >= least);
        fresh += covers & ~flags[i];
        flags[i] |= covers;
    }
    return fresh;
}

/// Throws shapes at a picture until enough of it is covered.
struct Thrower {
    const ReadView &from;
    const WriteView &to;
    std::span<const Corner> corners;
    int32_t size;
    int32_t counts;            ///< samples from which a pixel counts as covered
    BlockArray<uint8_t> flags; ///< of each pixel: is it covered?
    int64_t covered = 0;       ///< pixels
    Coverage coverage;

    /// At full density a pixel must be covered whole, else half of it is enough.
    Thrower(BytePass &pass, const FilterContext &context)
        : from(pass.From()), to(pass.To()), corners(kTypes[context.FilterShardsMode]), size(context.FilterShardsSize),
          counts(context.FilterShardsDensity == 100 ? kWhole : kWhole / 2),
          flags(static_cast<uint64_t>(from.width) * static_cast<uint64_t>(from.height)) {}

    uint8_t *FlagsOf(int32_t y) { return flags.data + y * int64_t{from.width}; }

    void Throw(int32_t x, int32_t y) {
        coverage.Take(corners, size, Draw(360), x, y, from);
        const int32_t left = coverage.left, width = coverage.right - left;
        Sums sums;
        for (int32_t row = coverage.top; row < coverage.bottom; row++)
            AddRow(sums, from.Row(row) + int64_t{left} * 3, coverage.Row(row), width);
        const auto mean = [&](uint32_t sum) { return (sum + sums.samples / 2) / sums.samples; };
        const Color color = PackColor(mean(sums.red), mean(sums.green), mean(sums.blue));
        for (int32_t row = coverage.top; row < coverage.bottom; row++) {
            LayOverRow(to.Row(row) + int64_t{left} * 3, coverage.Row(row), color, width);
            covered += FlagRow(FlagsOf(row) + left, coverage.Row(row), counts, width);
        }
    }

    /// The last tenth of a full cover would take random throws very long, so those go where something is still open.
    void Run(int32_t density) {
        const int64_t pixels = int64_t{from.width} * from.height;
        const int64_t target = (pixels * std::min(density, 99) + 99) / 100;
        const int64_t byChance = density == 100 ? pixels * 9 / 10 : target;
        while (covered < byChance) {
            const int32_t x = Draw(from.width), y = Draw(from.height);
            Throw(x, y);
        }
        if (density < 100) return;
        for (int32_t y = 0; y < from.height; y++) {
            for (int32_t x = 0; x < from.width; x++)
                if (FlagsOf(y)[x] == 0) Throw(x, y);
        }
    }
};

DibHandle ShardsKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    Thrower thrower(pass, context);
    if (!thrower.flags) return nullptr;
    const ReadView &from = pass.From();
    for (int32_t y = 0; y < from.height; y++) std::copy_n(from.Row(y), int64_t{from.width} * 3, pass.To().Row(y));
    SeedRandom(static_cast<uint32_t>(context.FilterShardsSeed));
    thrower.Run(context.FilterShardsDensity);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kShards = MakeFilter<kPage>(ShardsKernel);

} // namespace lmf
