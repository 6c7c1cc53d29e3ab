#include "tile.h"

#include <algorithm>

namespace lmf::drawing {
namespace {

uint32_t Stir(uint32_t bits) {
    // The factors are the fractions of the roots of 2 and of 3.
    bits = (bits ^ bits >> 15) * 0x6A09E667;
    bits = (bits ^ bits >> 13) * 0xBB67AE85;
    return bits ^ bits >> 16;
}

/// 0 to 1 from 16 bits.
double Part(uint32_t bits) {
    return (bits & 0xFFFF) / 65535.0;
}

/// Cell `i` of `count`, continued round the tile.
uint32_t Wrapped(int32_t i, int32_t count) {
    return static_cast<uint32_t>(((i % count) + count) % count);
}

/// Height at an offset from a corner of a cell, of the slope that passes through the corner.
double Slope(uint32_t seed, Cells cells, int32_t column, int32_t row, double dx, double dy) {
    const uint32_t bits = Scramble(seed, Wrapped(column, cells.across), Wrapped(row, cells.down));
    return (Part(bits) * 2 - 1) * dx + (Part(bits >> 16) * 2 - 1) * dy;
}

/// One pass of a mean over 2 `radius` + 1 samples, down the columns; the result is turned, so that two passes do both.
Tile BlurTurned(const Tile &tile, int32_t radius) {
    Tile turned;
    for (int32_t column = 0; column < kSamples; column++) {
        for (int32_t row = 0; row < kSamples; row++) {
            double sum = 0;
            for (int32_t i = -radius; i <= radius; i++) sum += tile.At(column, row + i);
            turned.At(row, column) = sum / (2 * radius + 1);
        }
    }
    return turned;
}

} // namespace

uint32_t Scramble(uint32_t seed, uint32_t a, uint32_t b) {
    return Stir(Stir(seed * 0x9E3779B1 + a) + b);
}

Point Scattered(uint32_t seed, int32_t i) {
    // The additive recurrence of the plastic number; the jitter takes its grid away.
    const uint32_t bits = Scramble(seed, static_cast<uint32_t>(i), 0);
    return {i * 0.7548776662466927 * kSide + Part(bits) * 8, i * 0.5698402909980532 * kSide + Part(bits >> 16) * 8};
}

std::vector<Disc> Pack(uint32_t seed, int32_t attempts, double largest, double smallest, double overlap) {
    std::vector<Disc> discs;
    const auto away = [](double a, double b) {
        const double distance = std::fabs(a - b);
        return std::min(distance, kSide - distance);
    };
    Random random{seed};
    for (int32_t attempt = 0; attempt < attempts; attempt++) {
        const double left = 1 - static_cast<double>(attempt) / attempts;
        const Disc disc = {random.Between(0, kSide), random.Between(0, kSide),
                           random.Between(0.8, 1.2) * Mix(smallest, largest, left * left * left)};
        const bool isFree = std::none_of(discs.begin(), discs.end(), [&](const Disc &other) {
            const double dx = away(disc.x, other.x), dy = away(disc.y, other.y);
            const double apart = (disc.radius + other.radius) * (1 - overlap);
            return dx * dx + dy * dy < apart * apart;
        });
        if (isFree) discs.push_back(disc);
    }
    return discs;
}

double Sine(double turns) {
    double part = turns - std::floor(turns + 0.5);
    if (part > 0.25) part = 0.5 - part;
    if (part < -0.25) part = -0.5 - part;
    const double x = part * 6.283185307179586, square = x * x;
    return x * (1 - square / 6 * (1 - square / 20 * (1 - square / 42 * (1 - square / 72))));
}

double Step(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double Dot(double dx, double dy, double radius) {
    const double inside = std::max(0.0, 1 - (dx * dx + dy * dy) / (radius * radius));
    return inside * inside;
}

double Noise(uint32_t seed, Cells cells, double x, double y) {
    const double u = x * cells.across / kSide, v = y * cells.down / kSide;
    const double left = std::floor(u), top = std::floor(v);
    const auto column = static_cast<int32_t>(left), row = static_cast<int32_t>(top);
    const double dx = u - left, dy = v - top;
    const double across = dx * dx * dx * (10 + dx * (6 * dx - 15)), down = dy * dy * dy * (10 + dy * (6 * dy - 15));
    const double above =
        Mix(Slope(seed, cells, column, row, dx, dy), Slope(seed, cells, column + 1, row, dx - 1, dy), across);
    const double below = Mix(Slope(seed, cells, column, row + 1, dx, dy - 1),
                             Slope(seed, cells, column + 1, row + 1, dx - 1, dy - 1), across);
    return Mix(above, below, down) * 1.5;
}

double Fractal(uint32_t seed, int32_t cells, int32_t octaves, double gain, double x, double y) {
    double sum = 0, height = 1;
    for (int32_t octave = 0; octave < octaves; octave++) {
        sum += height * Noise(seed + static_cast<uint32_t>(octave), {cells, cells}, x, y);
        // Whole numbers in this turn and growth keep the noise in step with the tile.
        const double turned = 2 * y - x;
        x = 2 * x + y;
        y = turned;
        height *= gain;
    }
    return sum;
}

Region RegionAt(uint32_t seed, Cells cells, double jitter, double x, double y) {
    const double width = static_cast<double>(kSide) / cells.across, height = static_cast<double>(kSide) / cells.down;
    const auto column = static_cast<int32_t>(std::floor(x / width)), row = static_cast<int32_t>(std::floor(y / height));
    constexpr int32_t kReach = 2, kAround = 2 * kReach + 1;
    Region around[kAround * kAround], *nearest = around;
    const auto far = [](const Region &region) { return region.dx * region.dx + region.dy * region.dy; };
    for (int32_t i = 0; i < kAround * kAround; i++) {
        const int32_t c = column + i % kAround - kReach, r = row + i / kAround - kReach;
        const uint32_t id = Scramble(seed, Wrapped(c, cells.across), Wrapped(r, cells.down));
        const double seedX = (c + 0.5 + jitter * (Part(id) - 0.5)) * width;
        const double seedY = (r + 0.5 + jitter * (Part(id >> 16) - 0.5)) * height;
        around[i] = {id, x - seedX, y - seedY, kSide};
        if (far(around[i]) < far(*nearest)) nearest = &around[i];
    }
    // The border to another region halves the way between the two seed points.
    for (const Region &other : around) {
        if (&other == nearest) continue;
        const double wayX = nearest->dx - other.dx, wayY = nearest->dy - other.dy;
        const double border = (far(other) - far(*nearest)) / (2 * std::sqrt(wayX * wayX + wayY * wayY));
        nearest->border = std::min(nearest->border, border);
    }
    return *nearest;
}

Tile Light(const Tile &height, double steepness) {
    Tile light;
    for (int32_t row = 0; row < kSamples; row++) {
        for (int32_t column = 0; column < kSamples; column++) {
            const double alongX = (height.At(column + 1, row) - height.At(column - 1, row)) * kScale / 2 * steepness;
            const double alongY = (height.At(column, row + 1) - height.At(column, row - 1)) * kScale / 2 * steepness;
            const double facing = 0.7 + 0.5 * (alongX + alongY); // the light comes from (-0.5, -0.5, 0.7)
            light.At(column, row) = std::max(0.0, facing / std::sqrt(1 + alongX * alongX + alongY * alongY));
        }
    }
    return light;
}

Tile Blur(const Tile &tile, int32_t radius) {
    Tile blurred = tile;
    for (int32_t pass = 0; pass < 6; pass++) blurred = BlurTurned(blurred, radius);
    return blurred;
}

} // namespace lmf::drawing
