// The sample picture, from back to front: sky, clouds, three ranges, a balloon; the lake, which mirrors them; the
// meadow. Nothing but arithmetic that IEEE 754 settles to the last bit, so that it is the same picture on every
// machine. Lengths are in pixels from the top left corner.
#include "sample.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lmf::host {

namespace {

constexpr int kWidth = 1280, kHeight = 853;
constexpr double kShore = 560;

struct Tint {
    double red, green, blue;
};

struct Point {
    double x, y;
};

constexpr Point kSun = {880, 352};

Tint Mix(const Tint &a, const Tint &b, double part) {
    const double t = std::clamp(part, 0.0, 1.0);
    return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t, a.blue + (b.blue - a.blue) * t};
}

Tint Lit(const Tint &tint, double light) {
    return {tint.red * light, tint.green * light, tint.blue * light};
}

// Goes from 0 at `from` to 1 at `to`, smoothly.
double Ramp(double from, double to, double at) {
    const double t = std::clamp((at - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// How much of a pixel a shape covers whose border is `inside` pixels away.
double Coverage(double inside) {
    return std::clamp(inside + 0.5, 0.0, 1.0);
}

double Length(double x, double y) {
    return std::sqrt(x * x + y * y);
}

// A number from 0 to 1 for each point of a grid.
double Scatter(int x, int y, uint32_t seed) {
    uint32_t bits = uint32_t(x) * 0x9E3779B1u ^ uint32_t(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    bits = (bits ^ bits >> 15) * 0x2C1B3C6Du;
    bits = (bits ^ bits >> 12) * 0x297A2D39u;
    return (bits ^ bits >> 15) / 4294967295.0;
}

// The whole number below, for coordinates above -1000; much faster than std::floor.
int Below(double at) {
    return int(at + 1000) - 1000;
}

// Scatter between the points of the grid.
double Noise(double x, double y, uint32_t seed) {
    const int column = Below(x), row = Below(y);
    const double across = Ramp(0, 1, x - column), down = Ramp(0, 1, y - row);
    const auto between = [&](int line) {
        const double a = Scatter(column, line, seed);
        return a + (Scatter(column + 1, line, seed) - a) * across;
    };
    const double above = between(row);
    return above + (between(row + 1) - above) * down;
}

// Noise of several sizes, each half as large and half as strong as the one before; from 0 to 1.
double Fractal(double x, double y, uint32_t seed, int octaves) {
    double sum = 0, strength = 1, total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * Noise(x, y, seed + uint32_t(i));
        total += strength;
        strength /= 2;
        x *= 2;
        y *= 2;
    }
    return sum / total;
}

// What depends on the column alone: where the ranges begin.
struct Ranges {
    static constexpr int kMargin = 16; // ripples look a little beyond the picture
    std::array<double, kWidth + 2 * kMargin> peaks, hills, firs;

    Ranges() {
        for (size_t i = 0; i < peaks.size(); ++i) {
            const double x = double(i) - kMargin;
            // Folded noise has the sharp crests of mountains.
            const double folded = 1 - std::fabs(2 * Fractal(x / 330 + 0.35, 0.5, 11, 7) - 1);
            peaks[i] = 500 - 290 * folded * folded * (0.55 + 0.45 * Ramp(1280, 250, x));
            hills[i] = 520 - 70 * Fractal(x / 260, 3.5, 31, 4) - 60 * Ramp(500, 1280, x) + 20;
            const double ground = 549 - 44 * Ramp(860, 1280, x) - 30 * Ramp(260, 0, x);
            firs[i] = std::min(ground, Treetop(x, ground));
        }
    }

    // Linear between the columns.
    static double At(const std::array<double, kWidth + 2 * kMargin> &range, double x) {
        const double place = std::clamp(x + kMargin, 0.0, double(range.size()) - 2);
        const size_t column = size_t(place);
        return range[column] + (range[column + 1] - range[column]) * (place - double(column));
    }

private:
    // The highest twig over a column among the firs near it, one every 9 pixels or so.
    static double Treetop(double x, double ground) {
        double top = ground;
        const int nearest = Below(x / 9);
        for (int fir = nearest - 2; fir <= nearest + 2; ++fir) {
            const double trunk = (fir + Scatter(fir, 1, 7)) * 9;
            const double height = 14 + 26 * Scatter(fir, 2, 7) * Noise(x / 60, 0.5, 9);
            const double away = std::fabs(x - trunk) / 8;
            const double twigs = 2 * Noise(x / 1.5, fir, 8);
            if (away < 1) top = std::min(top, ground - height * (1 - away) * (1 - away) - twigs);
        }
        return top;
    }
};

Tint Sky(double x, double y) {
    Tint tint = Mix({52, 96, 168}, {138, 176, 212}, Ramp(-60, 330, y));
    tint = Mix(tint, {250, 206, 158}, Ramp(170, 520, y));
    const double fromSun = Length(x - kSun.x, (y - kSun.y) * 1.15);
    tint = Mix(tint, {255, 214, 150}, 0.75 * Ramp(470, 0, fromSun));
    // Clouds lie flat, thin out towards the top and glow towards the sun.
    const double cloud = Fractal(x / 250 + 0.3 * Fractal(x / 90, y / 40, 51, 3), y / 74, 41, 6);
    const double cover = Ramp(0.5, 0.72, cloud) * Ramp(-40, 120, y) * Ramp(520, 330, y);
    if (cover > 0) {
        const double shade = Ramp(0.55, 0.85, Fractal(x / 250 + 0.02, y / 74 + 0.12, 41, 6));
        const Tint white = Mix({252, 240, 228}, {255, 226, 180}, Ramp(500, 60, fromSun));
        tint = Mix(tint, Mix(white, {176, 172, 190}, 0.7 * shade), 0.85 * cover);
    }
    tint = Mix(tint, {255, 240, 205}, Ramp(120, 30, fromSun));
    return Mix(tint, {255, 252, 238}, Coverage(34 - Length(x - kSun.x, y - kSun.y)));
}

// Rock and snow, lit from the right.
Tint Mountain(double x, double y, double crest) {
    const auto relief = [](double at, double down) {
        return 1 - std::fabs(2 * Fractal(at / 95 + down / 160, down / 78, 61, 6) - 1);
    };
    const double slope = (relief(x + 2.5, y) - relief(x - 2.5, y)) * 4.5;
    const double light = std::clamp(0.66 - slope, 0.25, 1.15);
    const double snowline = 300 + 90 * Fractal(x / 40, y / 60, 71, 4);
    const double snow = Ramp(26, -26, y - snowline - 60 * slope) * Ramp(190, 60, y - crest);
    const Tint rock = Lit(Mix({118, 112, 128}, {150, 136, 132}, light), 0.55 + 0.5 * light);
    const Tint white = Mix({138, 152, 190}, {255, 240, 222}, light);
    const Tint tint = Mix(rock, white, snow);
    return Mix(tint, {214, 190, 178}, 0.12 + 0.5 * Ramp(320, 520, y));
}

Tint Hill(double x, double y) {
    const double grown = Fractal(x / 26, y / 14, 81, 4);
    const Tint tint = Mix({58, 84, 84}, {112, 124, 88}, Ramp(0.3, 0.75, grown));
    return Mix(tint, {206, 184, 168}, 0.2 + 0.22 * Ramp(480, 550, y) + 0.2 * Ramp(500, 0, std::fabs(x - kSun.x)));
}

Tint Firs(double x, double y, double top) {
    const double needles = Fractal(x / 5, y / 9, 91, 3);
    const Tint tint = Mix({16, 38, 36}, {60, 84, 50}, needles * Ramp(60, 0, y - top));
    return Mix(tint, {196, 150, 96}, 0.35 * Ramp(9, 0, y - top) * Ramp(560, 0, std::fabs(x - kSun.x)));
}

// The balloon: gores in colors round a body that narrows towards its mouth, and a basket on ropes.
struct Balloon {
    static constexpr Point kCenter = {402, 212};
    static constexpr double kRadius = 112;

    static void Paint(Tint &tint, double x, double y) {
        const double across = (x - kCenter.x) / kRadius, down = (y - kCenter.y) / kRadius;
        if (std::fabs(across) > 1.05 || down < -1.05 || down > 1.9) return;
        const double width = HalfWidth(down);
        if (width > 0) tint = Mix(tint, Cloth(across / width, down), Coverage((width - std::fabs(across)) * kRadius));
        if (down > 1.28 && down < 1.66) {
            const double rope = 0.21 - 0.2 * (down - 1.28);
            tint = Mix(tint, {70, 52, 40}, 0.8 * Coverage(0.4 - std::fabs(std::fabs(across) - rope) * kRadius));
        }
        const double basket = std::min({0.14 - std::fabs(across), down - 1.64, 1.82 - down}) * kRadius;
        const double weave = 0.75 + 0.25 * Scatter(Below(x / 3), Below(y / 3), 5);
        tint = Mix(tint, Lit({134, 88, 50}, weave * (0.8 + 2 * across)), Coverage(basket));
    }

private:
    // In radii, at a height in radii below the center; nothing where there is no cloth.
    static double HalfWidth(double down) {
        constexpr double kTaper = 0.35, kMouth = 1.3;
        if (down > kMouth) return 0;
        if (down <= kTaper) return std::sqrt(std::max(0.0, 1 - down * down));
        const double widest = std::sqrt(1 - kTaper * kTaper);
        const double along = (down - kTaper) / (kMouth - kTaper);
        return widest + (0.2 - widest) * along * (0.62 + 0.38 * along);
    }

    // `across` from -1 to 1: sines of the angles at which the gores meet, as they are seen from the side.
    static Tint Cloth(double across, double down) {
        constexpr double kSeams[] = {-0.924, -0.707, -0.383, 0, 0.383, 0.707, 0.924};
        constexpr Tint kColors[] = {{206, 52, 44}, {248, 222, 172}, {230, 128, 40}, {38, 98, 142}};
        size_t gore = 0;
        double seam = 1;
        for (const double at : kSeams) {
            gore += across > at ? 1 : 0;
            seam = std::min(seam, std::fabs(across - at));
        }
        Tint tint = kColors[gore % 4];
        if (down > 0.16 && down < 0.34) tint = kColors[(gore + 1) % 4];
        const double bright = 0.72 + 0.34 * across + 0.16 * Ramp(0.9, -0.9, down);
        const double gleam = 0.35 * Ramp(0.5, 0, Length(across - 0.5, (down + 0.35)));
        tint = Lit(tint, std::max(0.34, bright) * (0.86 + 0.14 * Ramp(0, 0.05, seam)));
        return Mix(tint, {255, 240, 214}, gleam);
    }
};

// What stands over the shore.
Tint Land(const Ranges &ranges, double x, double y) {
    const double peak = Ranges::At(ranges.peaks, x), hill = Ranges::At(ranges.hills, x),
                 fir = Ranges::At(ranges.firs, x);
    Tint tint = {};
    if (y < peak + 1) tint = Sky(x, y);
    if (y > peak - 1 && y < hill + 1) tint = Mix(tint, Mountain(x, y, peak), Coverage(y - peak));
    if (y > hill - 1 && y < fir + 1) tint = Mix(tint, Hill(x, y), Coverage(y - hill));
    if (y > fir - 1) tint = Mix(tint, Firs(x, y, fir), Coverage(y - fir));
    Balloon::Paint(tint, x, y);
    return tint;
}

// The lake shows the land upside down, the darker the nearer, in ripples that grow towards the viewer.
Tint Lake(const Ranges &ranges, double x, double y) {
    const double near = (y - kShore) / (kHeight - kShore);
    const double flat = 4 + 22 * near;
    const double ripple = Fractal(x / (14 * flat), (y - kShore) / (0.35 * flat), 101, 4) - 0.5;
    const double mirrored = 2 * kShore - y + ripple * (6 + 70 * near);
    const Tint land = Land(ranges, x + ripple * 12, std::min(mirrored, kShore - 1));
    Tint tint = Mix(Lit(land, 0.93), {38, 74, 98}, 0.14 + 0.36 * near);
    const double path = std::fabs(x - kSun.x) / (60 + 120 * near);
    const double glitter = Ramp(0.56, 0.72, Fractal(x / (5 * flat), (y - kShore) / (0.22 * flat), 111, 3));
    tint = Mix(tint, {255, 232, 186}, 0.8 * glitter * Ramp(1, 0, path));
    return Mix(tint, {232, 206, 176}, 0.5 * Ramp(5, 0, y - kShore));
}

// Where the meadow meets the lake.
double Bank(double x) {
    return 838 - 118 * Ramp(640, -120, x) - 60 * Ramp(900, 1400, x) + 8 * Noise(x / 40, 0.5, 121);
}

Tint Soil(double x, double y) {
    const Tint tint = Mix({34, 52, 22}, {74, 92, 34}, Fractal(x / 18, y / 8, 131, 3));
    return Lit(tint, 0.6 + 0.5 * Ramp(60, 0, y - Bank(x)));
}

void SetPixel(const Picture &picture, int x, int y, const Tint &tint, double part) {
    if (x < 0 || x >= kWidth || y < 0 || y >= kHeight) return;
    uint8_t *pixel = picture.image.Row(y) + size_t{3} * size_t(x);
    const double levels[] = {tint.blue, tint.green, tint.red};
    for (size_t i = 0; i < 3; ++i)
        pixel[i] = uint8_t(std::clamp(pixel[i] + (levels[i] - pixel[i]) * part + 0.5, 0.0, 255.0));
}

// A blade that grows from `foot` and bends to one side.
void DrawBlade(const Picture &picture, const Point &foot, double height, double bend, const Tint &tint) {
    for (double up = 0; up < height; up += 0.5) {
        const double along = up / height;
        const double x = foot.x + bend * along * along;
        const int column = Below(x);
        const double part = 0.5 * (1 - 0.5 * along), right = x - column;
        const Tint lit = Mix(Lit(tint, 0.5), tint, along);
        SetPixel(picture, column, int(foot.y - up), lit, part * (1 - right));
        SetPixel(picture, column + 1, int(foot.y - up), lit, part * right);
    }
}

// Five petals round a yellow eye.
void DrawFlower(const Picture &picture, const Point &center, double radius, const Tint &petals) {
    constexpr Point kPetals[] = {{0, -1}, {0.95, -0.31}, {0.59, 0.81}, {-0.59, 0.81}, {-0.95, -0.31}};
    const int reach = int(2 * radius) + 1;
    for (int y = int(center.y) - reach; y <= int(center.y) + reach; ++y) {
        for (int x = int(center.x) - reach; x <= int(center.x) + reach; ++x) {
            const double right = x - center.x, down = y - center.y;
            double inside = -1;
            for (const Point &petal : kPetals)
                inside = std::max(inside, radius * 0.75 - Length(right - petal.x * radius, down - petal.y * radius));
            const double light = 1 - 0.05 * (down - right);
            SetPixel(picture, x, y, Lit(petals, std::clamp(light, 0.7, 1.1)), Coverage(inside));
            SetPixel(picture, x, y, {244, 196, 60}, Coverage(radius * 0.55 - Length(right, down)));
        }
    }
}

void DrawMeadow(const Picture &picture) {
    constexpr Tint kPetals[] = {{214, 44, 48}, {246, 240, 232}, {238, 150, 190}, {250, 206, 70}, {120, 96, 190}};
    constexpr int kStep = 3, kRowStep = 5;
    // From the back to the front, so that what is near covers what is far.
    for (int row = 700; row < kHeight + 60; row += kRowStep) {
        for (int x = -10; x < kWidth + 10; x += kStep) {
            const auto random = [x, row](uint32_t what) { return Scatter(x, row, what); };
            const Point foot = {x + kStep * random(1), row + kRowStep * random(2)};
            if (foot.y < Bank(foot.x)) continue;
            const double near = Ramp(700, 900, foot.y);
            const double height = (10 + 30 * near) * (0.5 + random(3));
            const Tint green = Mix({58, 92, 30}, {176, 180, 70}, random(4) * random(5) + 0.3 * Ramp(700, 1200, foot.x));
            DrawBlade(picture, foot, height, (random(6) - 0.35) * height * 0.7, green);
            if (random(7) > 0.02 + 0.015 * Noise(foot.x / 70, foot.y / 50, 8)) continue;
            const Tint petals = kPetals[size_t(random(9) * 4.99)];
            DrawFlower(picture, {foot.x, foot.y - height}, 1.6 + 3.2 * near, petals);
        }
    }
}

} // namespace

bool DrawSample(Picture &picture, Report &report) {
    if (!MakePicture(picture, kWidth, kHeight, 24, false, report)) return false;
    const Ranges ranges;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            Tint tint = y > Bank(x) ? Soil(x, y) : y > kShore ? Lake(ranges, x, y) : Land(ranges, x, y);
            const double grain = 5 * (Scatter(x, y, 141) - 0.5);
            tint = {tint.red + grain, tint.green + grain, tint.blue + grain};
            SetPixel(picture, x, y, tint, 1);
        }
    }
    DrawMeadow(picture);
    picture.codec = &kPng;
    return true;
}

} // namespace lmf::host
