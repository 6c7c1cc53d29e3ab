// What the textures are drawn from: a square of numbers that continues round its edges, noise that does so too, and
// light. Pictures must be the same on every machine, so floating point is kept to what IEEE 754 settles to the last
// bit: + - * / and square roots, rounding and comparing.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "image/texture/textures.h"

namespace lmf::drawing {

/// Side of a texture in pixels, the unit of all coordinates and lengths here unless a line says otherwise.
inline constexpr int32_t kSide = kTextureSide;
/// Samples a pixel in each direction while drawing; their mean becomes the pixel.
inline constexpr int32_t kScale = 2;
inline constexpr int32_t kSamples = kSide * kScale;

/// The square: kSamples by kSamples numbers whose rows and columns wrap round.
struct Tile {
    std::vector<double> values = std::vector<double>(size_t{kSamples} * kSamples);

    /// Where the sample of any column and row lies; those outside continue on the opposite side.
    static size_t IndexOf(int32_t column, int32_t row) {
        return static_cast<size_t>(row & (kSamples - 1)) * kSamples + static_cast<size_t>(column & (kSamples - 1));
    }
    double &At(int32_t column, int32_t row) { return values[IndexOf(column, row)]; }
    double At(int32_t column, int32_t row) const { return values[IndexOf(column, row)]; }
};
static_assert((kSamples & (kSamples - 1)) == 0);

/// Centre of a sample's column or row, in pixels.
constexpr double CentreOf(int32_t sample) {
    return (sample + 0.5) / kScale;
}

/// Calls visit(index, x, y) for every sample: the index in `values`, and its centre.
template <typename Visit>
void ForEachSample(Visit visit) {
    for (int32_t row = 0; row < kSamples; row++)
        for (int32_t column = 0; column < kSamples; column++)
            visit(Tile::IndexOf(column, row), CentreOf(column), CentreOf(row));
}

/// The tile whose samples are value(x, y).
template <typename Value>
Tile Fill(Value value) {
    Tile tile;
    ForEachSample([&](size_t i, double x, double y) { tile.values[i] = value(x, y); });
    return tile;
}

/// Calls visit(index, dx, dy) for the samples of a square round (x, y), at most `reach` from it on each axis: the index
/// in `values`, and the way from (x, y) to the sample.
template <typename Visit>
void VisitAround(double x, double y, double reach, Visit visit) {
    const auto first = [&](double centre) { return static_cast<int32_t>(std::ceil((centre - reach) * kScale - 0.5)); };
    const auto last = [&](double centre) { return static_cast<int32_t>(std::floor((centre + reach) * kScale - 0.5)); };
    for (int32_t row = first(y); row <= last(y); row++)
        for (int32_t column = first(x); column <= last(x); column++)
            visit(Tile::IndexOf(column, row), CentreOf(column) - x, CentreOf(row) - y);
}

/// 32 bits that depend on all bits of three numbers.
uint32_t Scramble(uint32_t seed, uint32_t a, uint32_t b);

/// A stream of random numbers. Draw once a statement, or within the braces of one initialisation: elsewhere compilers
/// choose the order of the draws.
struct Random {
    uint32_t seed;
    uint32_t draws = 0;

    /// 0 to below 1.
    double Unit() { return Scramble(seed, draws++, 0) / 4294967296.0; }
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    /// A length between `low` and `high`, short ones more often: as 1 / length squared.
    double Length(double low, double high) { return low * high / Between(low, high); }
};

struct Point {
    double x, y;
};
/// Point `i` of a scatter that has no clumps and no gaps.
Point Scattered(uint32_t seed, int32_t i);

struct Disc {
    double x, y, radius;
};
/// Discs that touch no other, large ones first, then ever smaller ones between them. `overlap` of their radii may lie
/// in another disc.
std::vector<Disc> Pack(uint32_t seed, int32_t attempts, double largest, double smallest, double overlap);

/// Sine of an angle in turns.
double Sine(double turns);
inline double Cosine(double turns) {
    return Sine(turns + 0.25);
}

/// 0 up to `from`, 1 beyond `to`, smooth between.
double Step(double from, double to, double x);
/// A soft dot: 1 at the centre, 0 from the distance `radius` on.
double Dot(double dx, double dy, double radius);
inline double Mix(double a, double b, double t) {
    return a + (b - a) * t;
}

/// How many cells of noise fill the tile's width and its height.
struct Cells {
    int32_t across, down;
};

/// Smooth noise of about -1 to 1, in waves of about two cells, any (x, y). It repeats with the tile.
/// (K. Perlin, "An Image Synthesizer", 1985.)
double Noise(uint32_t seed, Cells cells, double x, double y);
/// Noise with finer noise upon it: each of the `octaves` has waves shorter by the root of 5 than the one before, is
/// turned against it, so that no direction shows, and has `gain` of its height. The first fills the tile with `cells`
/// by `cells`.
double Fractal(uint32_t seed, int32_t cells, int32_t octaves, double gain, double x, double y);

/// Where a point lies among the regions round scattered seed points.
/// (S. Worley, "A Cellular Texture Basis Function", 1996.)
struct Region {
    uint32_t id;   ///< of the region, random bits
    double dx, dy; ///< from its seed point to the point
    double border; ///< distance to the nearest region
};
/// The regions of seed points scattered one a cell, `jitter` 0 in the middle of their cells to 1 anywhere in them.
Region RegionAt(uint32_t seed, Cells cells, double jitter, double x, double y);

/// How brightly a surface of these heights (pixels) is lit from the top left, above: 0.7 where it is level, to 1.
Tile Light(const Tile &height, double steepness);
/// Mean over a square of 2 `radius` + 1 samples, three times: close to a bell.
Tile Blur(const Tile &tile, int32_t radius);

} // namespace lmf::drawing
