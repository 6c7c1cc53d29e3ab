// Light Box: the picture as a wall of coloured lamps on black, seen from near. Each cell has a red, a green and a blue
// lamp side by side, each as large as the cell is bright in its channel.
// Screen size is the side of a cell in pixels, Screen type the shape of the lamps.
//
// A lamp's area is proportional to its light whatever its shape, so the picture keeps its tones, at less than a third
// of its brightness. Edges are smooth: each pixel is taken as 6 x 6 samples, which divide every cell into three.
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/cell_means.h"

namespace lmf {

namespace {

enum Screen : int32_t { kEllipse, kHorizontalRaster, kVerticalRaster, kCube, kDiamond };

constexpr PageControl kPage[] = {
    Slider(560, "Screen size:", &P::FilterLightboxSize, {4, 64})
        .In(Unit::Pixels)
        .Help("Makes each cell of three lamps this wide and high."),
    Combo(561, "Screen type:", &P::FilterLightboxScreen, "Ellipse;Horizontal raster;Vertical raster;Cube;Diamond")
        .Help("Chooses the shape of the lamps."),
};

constexpr int32_t kSamples = 6; ///< of a pixel in each direction
constexpr int32_t kLevels = 256;

/// How late a growing lamp reaches a sample, the middle first. `across` and `down` are the sample's distances from the
/// middle of the lamp's box, in units that make half the box `half` in both directions.
int64_t ReachOrder(int32_t screen, int64_t across, int64_t down, int64_t half) {
    switch (screen) {
    case kHorizontalRaster:
        return down * 4 * half + across;
    case kVerticalRaster:
        return across * 4 * half + down;
    case kCube:
        return std::max(across, down) * 4 * half + std::min(across, down);
    case kDiamond:
        return across + down;
    default:
        return across * across + down * down;
    }
}

/// The three lamps of a cell at every level: how much of each pixel is lit, of 255.
struct Lamps {
    int32_t size;
    BlockArray<uint8_t> lit; ///< [channel][level][row][column], channels in the order red, green, blue

    Lamps(int32_t cellSize, int32_t screen) : size(cellSize), lit(static_cast<uint64_t>(3 * kLevels * size * size)) {
        BlockArray<Sample> samples(static_cast<uint64_t>(Width()) * static_cast<uint64_t>(Height()));
        if (!lit || !samples) {
            complete = false;
            return;
        }
        Sort(samples.data, screen);
        std::fill(lit.data, lit.data + int64_t{3} * kLevels * size * size, uint8_t{0});
        for (int32_t channel = 0; channel < 3; channel++) Light(channel, samples.data);
    }
    explicit operator bool() const { return complete; }
    /// A row of a lamp's cell at a level.
    const uint8_t *Row(int32_t channel, int32_t level, int32_t y) const { return &lit[Place(channel, level, y)]; }

private:
    struct Sample {
        int64_t order;
        int32_t x, y;
    };

    bool complete = true;

    /// Of a lamp's box in samples.
    int32_t Width() const { return size * kSamples / 3; }
    int32_t Height() const { return size * kSamples; }
    int64_t Place(int32_t channel, int32_t level, int32_t y) const {
        return ((int64_t{channel} * kLevels + level) * size + y) * size;
    }

    /// The samples of a box in the order in which a growing lamp reaches them.
    void Sort(Sample *samples, int32_t screen) const {
        const int64_t width = Width(), height = Height();
        Sample *next = samples;
        for (int32_t y = 0; y < height; y++)
            for (int32_t x = 0; x < width; x++)
                *next++ = {ReachOrder(screen, std::abs(2 * x + 1 - width) * height,
                                      std::abs(2 * y + 1 - height) * width, width * height),
                           x, y};
        std::sort(samples, next, [](const Sample &a, const Sample &b) {
            return a.order != b.order ? a.order < b.order : a.y != b.y ? a.y < b.y : a.x < b.x;
        });
    }

    /// At full light a lamp fills 7/8 of its box: the round ones still look round, and those of other shapes keep a
    /// black seam.
    void Light(int32_t channel, const Sample *samples) {
        const int64_t largest = int64_t{Width()} * Height() * 7 / 8;
        BlockArray<uint8_t> counts(static_cast<uint64_t>(size * size));
        if (!counts) {
            complete = false;
            return;
        }
        std::fill(counts.data, counts.data + int64_t{size} * size, uint8_t{0});
        int64_t reached = 0;
        for (int32_t level = 0; level < kLevels; level++) {
            for (; reached < largest * level / (kLevels - 1); reached++) {
                const int32_t x = samples[reached].x + channel * Width();
                counts[int64_t{samples[reached].y / kSamples} * size + x / kSamples]++;
            }
            uint8_t *to = &lit[Place(channel, level, 0)];
            for (int32_t i = 0; i < size * size; i++)
                to[i] = static_cast<uint8_t>((counts[i] * 255 + kSamples * kSamples / 2) / (kSamples * kSamples));
        }
    }
};

DibHandle LightBoxKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const int32_t size = context.FilterLightboxSize, width = source.width, height = source.height;
    const Lamps lamps(size, context.FilterLightboxScreen);
    CellMeans means(width, 3, size);
    if (!lamps || !means) return nullptr;
    for (int32_t top = 0; top < height; top += size) {
        const int32_t bottom = std::min(top + size, height);
        const uint8_t *colors = means.Of(pass.From(), top, bottom);
        for (int32_t y = top; y < bottom; y++) {
            uint8_t *to = pass.To().Row(y);
            for (int32_t x = 0; x < width; x += size) {
                const uint8_t *color = colors + int64_t{x} * 3;
                const uint8_t *red = lamps.Row(0, color[2], y - top), *green = lamps.Row(1, color[1], y - top),
                              *blue = lamps.Row(2, color[0], y - top);
                for (int32_t i = 0; i < std::min(size, width - x); i++, to += 3) {
                    to[0] = blue[i];
                    to[1] = green[i];
                    to[2] = red[i];
                }
            }
        }
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kLightBox = MakeFilter<kPage>(LightBoxKernel);

} // namespace lmf
