#include "canvas_textures.h"

#include <algorithm>

namespace lmf::drawing {
namespace {

double Squared(double x) {
    return x * x;
}

/// 0 to 1, always the same for the same thing.
double PartOf(uint32_t seed, uint32_t thing) {
    return Scramble(seed, thing, 0) / 4294967296.0;
}

/// The tile whose samples are combine(a, b) of those of two.
template <typename Combine>
Tile Combined(const Tile &a, const Tile &b, Combine combine) {
    Tile tile;
    for (size_t i = 0; i < tile.values.size(); i++) tile.values[i] = combine(a.values[i], b.values[i]);
    return tile;
}

Tile Sum(const Tile &a, const Tile &b) {
    return Combined(a, b, [](double left, double right) { return left + right; });
}

/// A thin curve of soft dots in a row.
struct Fibre {
    Point from;
    double turn, bend; ///< where it heads, and how much that changes a dot
    int32_t dots;
    double radius, height; ///< of a dot
};

void AddFibre(Tile *tile, Fibre fibre) {
    Point &at = fibre.from;
    for (int32_t dot = 0; dot < fibre.dots; dot++, fibre.turn += fibre.bend) {
        at.x += Cosine(fibre.turn) * fibre.radius * 0.6;
        at.y += Sine(fibre.turn) * fibre.radius * 0.6;
        VisitAround(at.x, at.y, fibre.radius, [&](size_t i, double dx, double dy) {
            tile->values[i] += fibre.height * Dot(dx, dy, fibre.radius);
        });
    }
}

/// Handmade paper: the dimples of the felt, and fibres pressed into it.
Tile RagPaper() {
    Tile height = Fill([](double x, double y) {
        return 1.5 * Fractal(1, 36, 3, 0.5, x, y) + 1.6 * Noise(7, {10, 10}, x, y);
    });
    Random random{11};
    for (int32_t fibre = 0; fibre < 170; fibre++)
        AddFibre(&height, {Scattered(12, fibre), random.Unit(), random.Between(-0.009, 0.009), 50, 1.3, 0.16});
    return Light(height, 0.5);
}

/// A wall after the trowel: smears laid over one another, each with its ridge, on a rough ground.
Tile Plaster() {
    Tile height = Fill([](double x, double y) { return 0.5 * Fractal(21, 40, 2, 0.6, x, y); });
    for (uint32_t layer = 0; layer < 3; layer++) {
        ForEachSample([&](size_t i, double x, double y) {
            const double bentX = x + 7 * Fractal(31 + layer, 9, 2, 0.5, x, y);
            const double bentY = y + 7 * Fractal(41 + layer, 9, 2, 0.5, x, y);
            const double smear = Fractal(51 + layer, 6, 2, 0.5, bentX, bentY), ridge = 1.1 * Dot(smear - 0.12, 0, 0.12);
            const double under = height.values[i];
            height.values[i] = Mix(under, under * 0.25 + 1.2 + smear + ridge, Step(0, 0.12, smear));
        });
    }
    return Light(Sum(height, Fill([](double x, double y) { return 0.1 * Fractal(71, 64, 2, 0.7, x, y); })), 0.8);
}

/// Plain weave of thin, uneven threads with gaps between them.
Tile Muslin() {
    constexpr int32_t kThreads = 44;
    constexpr double kPitch = static_cast<double>(kSide) / kThreads;
    // Height of the threads that run along one axis; each passes over every second one of the others.
    const auto threads = [](uint32_t seed, double along, double across, double x, double y) {
        const double drifted = across + 1.3 * Noise(seed, {9, 9}, x, y);
        const double thread = std::floor(drifted / kPitch);
        const auto number = static_cast<uint32_t>(thread + kThreads) % kThreads;
        const double width = 0.6 + 0.3 * PartOf(seed, number) + 0.3 * Noise(seed + 5, {18, 18}, x, y);
        const double off = (drifted / kPitch - thread - 0.5) * 2 / width;
        if (off < -1 || off > 1) return -3.0;
        const double under = (number + seed) % 2 * 0.5;
        return 2 * std::sqrt(1 - off * off) + Sine(along / kPitch / 2 + under) +
               0.1 * Sine((along + drifted) * 98 / kSide);
    };
    const Tile height = Fill([&](double x, double y) {
        return std::max({threads(82, y, x, x, y), threads(91, x, y, x, y), -2.0});
    });
    return Combined(Light(height, 0.5), height, [](double light, double high) { return light + 0.13 * high; });
}

/// Cast concrete: cloudy cement, sand, and the holes that bubbles of air left.
Tile Concrete() {
    Tile height = Fill([](double x, double y) { return 0.5 * Fractal(101, 64, 2, 0.8, x, y); });
    Tile tone = Fill([](double x, double y) { return 0.15 * Fractal(111, 6, 4, 0.65, x, y); });
    Random random{121};
    for (int32_t hole = 0; hole < 230; hole++) {
        const Point at = Scattered(122, hole);
        const double radius = random.Length(0.6, 4.2), flat = random.Between(0.55, 1);
        const double turn = random.Unit(), ux = Cosine(turn), uy = Sine(turn);
        VisitAround(at.x, at.y, radius, [&](size_t i, double dx, double dy) {
            const double along = dx * ux + dy * uy, off = (dy * ux - dx * uy) / flat;
            const double inside = 1 - (along * along + off * off) / (radius * radius);
            if (inside < 0) return;
            height.values[i] -= radius * std::sqrt(inside);
            tone.values[i] -= 0.25 * Step(0, 0.6, inside);
        });
    }
    return Sum(Light(height, 0.45), tone);
}

/// Sewing thread, wound side by side: round, twisted of plies, no two quite alike.
Tile Threads() {
    constexpr int32_t kThreads = 20;
    constexpr double kPitch = static_cast<double>(kSide) / kThreads;
    const auto acrossAt = [](double x, double y) { return (y + 1.4 * Noise(141, {5, 10}, x, y)) / kPitch + 0.5; };
    const auto numberAt = [](double across) { return static_cast<uint32_t>(std::floor(across) + kThreads) % kThreads; };
    const Tile height = Fill([&](double x, double y) {
        const double across = acrossAt(x, y), off = (across - std::floor(across)) * 2 - 1;
        const double ply = x * 40 / kSide + PartOf(131, numberAt(across)) - off * 0.55;
        const double hair = 0.1 * Noise(151, {60, 90}, x + off * 6, y);
        return kPitch * 0.36 * std::sqrt(1 - off * off) * (0.62 + 0.38 * std::fabs(Sine(ply / 2))) + hair;
    });
    const Tile dye = Fill([&](double x, double y) { return 0.14 * PartOf(132, numberAt(acrossAt(x, y))); });
    return Combined(Sum(Light(height, 0.8), dye), height,
                    [](double light, double high) { return light + 0.05 * high; });
}

/// Bubbles of all sizes pressed together, each with a bright skin and a glint.
Tile QuantumFoam() {
    struct Bubble {
        double power = 1e9; ///< squared distance less the squared radius: the bubble of the least one holds the point
        double dx = 0, dy = 0, radius = 1;
    };
    const std::vector<Disc> discs = Pack(161, 9000, 24, 1.5, 0.04);
    const auto visitBubbles = [&](auto visit) {
        for (const Disc &disc : discs) {
            VisitAround(disc.x, disc.y, disc.radius + 7, [&](size_t i, double dx, double dy) {
                visit(i, Bubble{dx * dx + dy * dy - disc.radius * disc.radius, dx, dy, disc.radius});
            });
        }
    };
    std::vector<Bubble> holders(size_t{kSamples} * kSamples);
    visitBubbles([&](size_t i, const Bubble &bubble) {
        if (bubble.power < holders[i].power) holders[i] = bubble;
    });
    Tile wall = Fill([](double, double) { return 100.0; });
    visitBubbles([&](size_t i, const Bubble &other) {
        const double wayX = holders[i].dx - other.dx, wayY = holders[i].dy - other.dy;
        const double apart = std::sqrt(wayX * wayX + wayY * wayY);
        if (apart > 0) wall.values[i] = std::min(wall.values[i], (other.power - holders[i].power) / (2 * apart));
    });
    Tile foam;
    for (size_t i = 0; i < foam.values.size(); i++) {
        const Bubble &bubble = holders[i];
        const double radius = bubble.radius, thick = 0.7 + radius / 14;
        const double skin = 1 - Step(thick * 0.5, thick * 1.6, wall.values[i]);
        const double glow = Squared((bubble.dx * bubble.dx + bubble.dy * bubble.dy) / (radius * radius));
        const double lit = (bubble.dx + bubble.dy) / (radius + 2);
        const double glint = Dot(bubble.dx + radius * 0.36, bubble.dy + radius * 0.36, radius * 0.3);
        const double counter = Dot(bubble.dx - radius * 0.42, bubble.dy - radius * 0.42, radius * 0.4);
        foam.values[i] = 0.6 * skin + 0.3 * std::min(1.0, glow) + 0.12 * lit + 0.8 * glint + 0.2 * counter;
    }
    return foam;
}

/// The shadow of leaves on a wall that the low sun lights: twigs close to it sharp, others soft.
Tile AfternoonSun() {
    const auto leaves = [](uint32_t seed, int32_t twigs, double size) {
        Tile shadow;
        Random random{seed};
        for (int32_t twig = 0; twig < twigs; twig++) {
            Point at = Scattered(seed, twig);
            double turn = random.Between(0, 0.22);
            const double bend = random.Between(-0.02, 0.02);
            for (int32_t leaf = 0; leaf < 9; leaf++, turn += bend) {
                const double length = size * random.Between(0.75, 1.2) * (leaf < 7 ? 1 : 0.7);
                const double leafTurn = turn + (leaf % 2 == 0 ? 0.13 : -0.13) + random.Between(-0.05, 0.05);
                const double ux = Cosine(leafTurn), uy = Sine(leafTurn);
                VisitAround(at.x, at.y, length, [&](size_t i, double dx, double dy) {
                    const double along = (dx * ux + dy * uy) / length, off = (dy * ux - dx * uy) / length;
                    if (along < 0 || along > 1) return;
                    const double half = 0.95 * along * (1 - along) * (1.25 - 0.5 * along);
                    if (std::fabs(off) < half) shadow.values[i] = 1;
                });
                for (int32_t step = 0; step < 10; step++) {
                    at.x += Cosine(turn) * size * 0.045;
                    at.y += Sine(turn) * size * 0.045;
                    VisitAround(at.x, at.y, 0.6, [&](size_t i, double, double) { shadow.values[i] = 1; });
                }
            }
        }
        return shadow;
    };
    const Tile close = Blur(leaves(81, 11, 22), 2), far = Blur(leaves(88, 20, 26), 6);
    const Tile wall = Fill([](double x, double y) { return 1 + 0.03 * Fractal(191, 60, 2, 0.7, x, y); });
    const Tile light = Combined(close, far, [](double a, double b) { return (1 - 0.5 * a) * (1 - 0.45 * b); });
    return Combined(light, wall, [](double a, double b) { return a * b; });
}

/// An engraver's plate: swelling lines, crossed where it is darker.
Tile Copperplate() {
    return Fill([](double x, double y) {
        const double bentX = x + 7 * Noise(201, {3, 3}, x, y), bentY = y + 7 * Noise(202, {3, 3}, x, y);
        const double dark = 0.46 + 0.3 * Fractal(211, 5, 2, 0.4, x, y);
        // The share of the pitch that a line's ink covers, with an edge about a pixel wide.
        const auto ink = [](double phase, double width) {
            const double off = std::fabs(phase - std::floor(phase) - 0.5) * 2;
            return 1 - Step(width - 0.14, width + 0.14, off);
        };
        const double lines = ink((bentX * 16 + bentY * 32) / kSide, dark);
        const double crossed = ink((bentX * 34 - bentY * 10) / kSide, (dark - 0.42) * 1.3);
        return 0.06 * Fractal(221, 90, 2, 0.7, x, y) - std::max(lines, crossed);
    });
}

/// Polished chips of stone in cement.
Tile Terrazzo() {
    Tile floor = Fill([](double x, double y) { return 0.62 + 0.09 * Fractal(231, 100, 2, 0.8, x, y); });
    Random random{241};
    for (const Disc &disc : Pack(242, 16000, 15, 1.1, 0.06)) {
        struct Side {
            double ux, uy, away;
        };
        Side sides[7];
        for (int32_t i = 0; i < 7; i++) {
            const double turn = (i + random.Between(-0.35, 0.35)) / 7;
            sides[i] = {Cosine(turn), Sine(turn), disc.radius * random.Between(0.62, 1)};
        }
        static constexpr double kStones[] = {0.05, 0.3, 0.45, 0.85, 0.95, 1.1};
        const double kind = kStones[static_cast<size_t>(random.Unit() * 6)];
        const double stone = kind + random.Between(-0.06, 0.06);
        const auto seed = static_cast<uint32_t>(disc.x * 1000);
        VisitAround(disc.x, disc.y, disc.radius * 1.4, [&](size_t i, double dx, double dy) {
            double outside = -disc.radius;
            for (const Side &side : sides) outside = std::max(outside, dx * side.ux + dy * side.uy - side.away);
            if (outside > 0) return;
            const double vein = 0.07 * Fractal(seed, 30, 3, 0.6, disc.x + dx, disc.y + dy);
            floor.values[i] = stone + vein - 0.12 * Step(-0.7, 0, outside);
        });
    }
    return floor;
}

/// Streaks of rain before the wind, far and near.
Tile Downpour() {
    Tile rain;
    Random random{261};
    constexpr int32_t kDrops = 1700;
    for (int32_t drop = 0; drop < kDrops; drop++) {
        const double near = static_cast<double>(drop) / kDrops;
        const double length = Mix(9, 64, near * near) * random.Between(0.5, 1.2);
        const double width = Mix(0.55, 1.2, near), bright = Mix(0.15, 0.6, near) * Squared(random.Between(0.3, 1));
        const double lean = 0.045 + random.Between(-0.005, 0.005), ux = -Sine(lean), uy = Cosine(lean);
        const Point at = {random.Between(0, kSide), random.Between(0, kSide)};
        VisitAround(at.x, at.y, length / 2, [&](size_t i, double dx, double dy) {
            const double along = (dx * ux + dy * uy) / length + 0.5, off = (dx * uy - dy * ux) / width;
            if (along < 0 || along > 1) return;
            const double fade = bright * along * Step(0, 0.06, 1 - along);
            rain.values[i] += fade * std::max(0.0, 1 - off * off);
            // Each streak darkens its left side: without that, many streaks are a mist.
            rain.values[i] -= 0.25 * fade * std::max(0.0, 1 - Squared(off + 1.6));
        });
    }
    return rain;
}

/// Grey paper made of many papers: flecks, and fibres of every tone.
Tile RecycledPaper() {
    Tile paper = Fill([](double x, double y) { return 0.2 * Fractal(271, 24, 4, 0.75, x, y); });
    Random random{291};
    for (int32_t fibre = 0; fibre < 700; fibre++) {
        const double tone = random.Unit() < 0.6 ? random.Between(-0.3, -0.08) : random.Between(0.08, 0.3);
        AddFibre(&paper, {Scattered(292, fibre), random.Unit(), random.Between(-0.006, 0.006),
                          static_cast<int32_t>(random.Length(9, 60)), random.Between(0.7, 1), tone});
    }
    for (int32_t fleck = 0; fleck < 520; fleck++) {
        const Point at = Scattered(293, fleck);
        const double radius = random.Length(0.6, 3.4), flat = random.Between(0.3, 0.8);
        const double tone = random.Unit() < 0.7 ? random.Between(-0.8, -0.2) : random.Between(0.2, 0.5);
        const double turn = random.Unit(), ux = Cosine(turn), uy = Sine(turn);
        VisitAround(at.x, at.y, radius * 1.6, [&](size_t i, double dx, double dy) {
            const double along = dx * ux + dy * uy, off = (dy * ux - dx * uy) / flat;
            const double ragged = radius * (1 + 0.7 * Noise(294, {100, 100}, at.x + dx, at.y + dy));
            paper.values[i] += tone * (1 - Step(ragged - 0.5, ragged + 0.4, std::sqrt(along * along + off * off)));
        });
    }
    return paper;
}

/// Straw on straw, the lower ones in the shade of the upper ones.
Tile Haystack() {
    Tile hay = Fill([](double, double) { return 0.1; });
    Random random{303};
    constexpr int32_t kStraws = 1000;
    for (int32_t straw = 0; straw < kStraws; straw++) {
        const Point at = Scattered(302, straw);
        const double half = random.Between(16, 44), width = random.Between(1.1, 2.5);
        const double heading = random.Unit() < 0.25 ? 0.25 : 0.02;
        const double turn = heading + random.Between(-0.16, 0.16), ux = Cosine(turn), uy = Sine(turn);
        const double bow = random.Between(-0.004, 0.004);
        const double tone = random.Between(0.75, 1.1) * Mix(0.45, 1, static_cast<double>(straw) / kStraws);
        const auto seed = static_cast<uint32_t>(straw);
        VisitAround(at.x, at.y, half + 4, [&](size_t i, double dx, double dy) {
            const double along = dx * ux + dy * uy;
            const double off = (dy * ux - dx * uy + bow * along * along) / width;
            if (std::fabs(along) > half) return;
            if (std::fabs(off) < 1) {
                const double grain = 0.12 * Noise(seed, {128, 128}, along * 0.15, off * width);
                hay.values[i] = tone * (0.45 + 0.4 * std::sqrt(1 - off * off) - 0.3 * off * (ux + uy) + grain);
            } else if (off >= 1 && off < 3.2) {
                hay.values[i] *= 0.5 + 0.5 * (off - 1) / 2.2;
            }
        });
    }
    return hay;
}

/// Fine glowing threads that drift across one another.
Tile Filaments() {
    Tile glow;
    Random random{21};
    for (int32_t filament = 0; filament < 100; filament++) {
        Point at = Scattered(22, filament);
        double turn = random.Unit();
        const double bright = random.Between(0.15, 0.6), width = random.Between(0.7, 1.4);
        const auto seed = static_cast<uint32_t>(331 + filament);
        const auto steps = static_cast<int32_t>(random.Between(220, 520));
        Tile path;
        for (int32_t step = 0; step < steps; step++) {
            turn += 0.009 * Noise(seed, {9, 9}, at.x, at.y);
            at.x += Cosine(turn) * 0.5;
            at.y += Sine(turn) * 0.5;
            const double fade = bright * Step(0, 60, step) * Step(0, 60, steps - step);
            VisitAround(at.x, at.y, 5, [&](size_t i, double dx, double dy) {
                path.values[i] = std::max(path.values[i], fade * (Dot(dx, dy, width) + 0.14 * Dot(dx, dy, 5)));
            });
        }
        glow = Combined(glow, path, [](double a, double b) { return a + b * (1 - 0.6 * std::min(1.0, a)); });
    }
    return glow;
}

/// Stone pavers in herringbone.
Tile UpmarketDriveway() {
    constexpr double kStone = 32; // the short side; the long one is twice that
    struct Paver {
        uint32_t id;
        double joint; ///< distance to the middle of the nearest joint
    };
    const auto paverAt = [](double x, double y) {
        x += 0.6 * Noise(351, {16, 16}, x, y);
        y += 0.6 * Noise(352, {16, 16}, x, y);
        const auto column = static_cast<int32_t>(std::floor(x / kStone));
        const auto row = static_cast<int32_t>(std::floor(y / kStone));
        // Along a row lie the two cells of a paver that lies, then the foot and the head of two that stand.
        static constexpr int32_t kToLeft[] = {0, -1, 0, 0}, kToTop[] = {0, 0, -1, 0};
        const int32_t kind = (column - row) & 3, firstColumn = column + kToLeft[kind], firstRow = row + kToTop[kind];
        const double left = x - firstColumn * kStone, top = y - firstRow * kStone;
        const double right = (kind < 2 ? 2 : 1) * kStone - left, bottom = (kind < 2 ? 1 : 2) * kStone - top;
        constexpr auto kCells = static_cast<int32_t>(kSide / kStone);
        const auto number = static_cast<uint32_t>((firstColumn & (kCells - 1)) * kCells + (firstRow & (kCells - 1)));
        return Paver{Scramble(341, number, 0), std::min({left, right, top, bottom})};
    };
    Tile height, tone;
    ForEachSample([&](size_t i, double x, double y) {
        const Paver paver = paverAt(x, y);
        const double rough = 0.35 * Fractal(361, 50, 3, 0.7, x, y), speckle = 0.07 * Fractal(371, 110, 2, 0.8, x, y);
        const double stain = 0.06 * Fractal(381 + paver.id % 7, 8, 2, 0.5, x, y);
        const double edge = std::clamp((paver.joint - 1) / 4.5, 0.0, 1.0), shade = 1 - Step(0.6, 2.2, paver.joint);
        height.values[i] = paver.joint < 1 ? 0.3 * rough : 3.4 * std::sqrt(1 - Squared(1 - edge)) + rough;
        tone.values[i] = speckle + stain + 0.24 * PartOf(391, paver.id) - 0.35 * shade;
    });
    return Sum(Light(height, 0.6), tone);
}

/// Balls of all sizes side by side.
Tile Spheres() {
    Tile balls = Fill([](double, double) { return -0.25; });
    for (const Disc &disc : Pack(401, 12000, 30, 2.5, 0)) {
        const double shade = 0.85 + 0.15 * PartOf(402, static_cast<uint32_t>(disc.x * 1000));
        VisitAround(disc.x, disc.y, disc.radius, [&](size_t i, double dx, double dy) {
            const double nx = dx / disc.radius, ny = dy / disc.radius, flat = 1 - nx * nx - ny * ny;
            if (flat < 0) return;
            const double nz = std::sqrt(flat), facing = std::max(0.0, 0.7 * nz - 0.5 * (nx + ny));
            const double bounced = 0.12 * std::max(0.0, nx + ny) * (1 - nz);
            const double glint = Dot(nx + 0.36, ny + 0.36, 0.3);
            balls.values[i] = shade * (0.15 + 0.7 * facing + bounced) + 0.4 * glint;
        });
    }
    return balls;
}

/// Frozen ground that has cracked into polygons, with snow in the cracks and rime upon the ground.
Tile Permafrost() {
    Tile height, tone;
    ForEachSample([&](size_t i, double x, double y) {
        const double bentX = x + 5 * Fractal(412, 9, 3, 0.5, x, y), bentY = y + 5 * Fractal(413, 9, 3, 0.5, x, y);
        const Region polygon = RegionAt(411, {5, 5}, 0.85, bentX, bentY);
        const double fine = RegionAt(421, {14, 14}, 0.85, bentX, bentY).border;
        const double snow = 1 - Step(1.5, 5.5, polygon.border + 1.6 * Fractal(431, 40, 3, 0.7, x, y));
        const double rime = Step(0.15, 0.9, Fractal(441, 90, 2, 0.8, x, y));
        const double crack = 1 - Step(0.2, 1.1, polygon.border), fineCrack = 1 - Step(0.2, 1.4, fine);
        const double ground = 0.9 * Fractal(461, 24, 4, 0.6, x, y), rim = 2.4 * Dot(polygon.border - 6, 0, 6);
        height.values[i] = ground * (1 - 0.7 * snow) + rim - 3 * crack;
        tone.values[i] = 0.5 * (snow - crack) + 0.3 * rime + 0.12 * fineCrack + 0.1 * PartOf(451, polygon.id);
    });
    return Sum(Light(height, 0.42), tone);
}

} // namespace

const Texture kTextures[kTextureCount] = {
    {RagPaper, 9},   {Plaster, 17},          {Muslin, 24},        {Concrete, 16},
    {Threads, 34},   {QuantumFoam, 34},      {AfternoonSun, 28},  {Copperplate, 44},
    {Terrazzo, 34},  {Downpour, 26},         {RecycledPaper, 14}, {Haystack, 46},
    {Filaments, 30}, {UpmarketDriveway, 30}, {Spheres, 52},       {Permafrost, 26},
};

std::vector<uint8_t> DrawTexture(const Texture &texture) {
    const Tile tile = texture.draw();
    std::vector<double> pixels;
    for (int32_t y = 0; y < kSide; y++) {
        for (int32_t x = 0; x < kSide; x++) {
            double sum = 0;
            for (int32_t row = 0; row < kScale; row++)
                for (int32_t column = 0; column < kScale; column++)
                    sum += tile.At(x * kScale + column, y * kScale + row);
            pixels.push_back(sum / (kScale * kScale));
        }
    }
    double sum = 0, squares = 0;
    for (double pixel : pixels) sum += pixel;
    const double mean = sum / static_cast<double>(pixels.size());
    for (double pixel : pixels) squares += Squared(pixel - mean);
    const double gain = texture.deviation / std::sqrt(squares / static_cast<double>(pixels.size()));
    const auto tonesAround = [&](double middle) {
        std::vector<uint8_t> tones;
        for (double pixel : pixels)
            tones.push_back(static_cast<uint8_t>(std::clamp(middle + (pixel - mean) * gain, 0.0, 255.0) + 0.5));
        return tones;
    };
    // What is cut off moves the mean; so the middle is searched that brings it back.
    double low = 0, high = 255;
    for (int32_t halving = 0; halving < 16; halving++) {
        const double middle = (low + high) / 2;
        double tones = 0;
        for (uint8_t tone : tonesAround(middle)) tones += tone;
        (tones < kMeanTone * static_cast<double>(pixels.size()) ? low : high) = middle;
    }
    return tonesAround(low);
}

} // namespace lmf::drawing
