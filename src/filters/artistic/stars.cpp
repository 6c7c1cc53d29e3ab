// Stars: puts a star of light on each bright spot, as a cross screen before a lens does: four rays and a glow in the
// colour of the spot, added to the picture as light.
// Cell size is the grid in which a spot is looked for, in pixels, and Threshold the tone from which a spot counts; the
// rays grow with how far a spot is above it. Angle turns the rays counter-clockwise, in degrees; Brightness sets their
// strength and Line size their width in pixels. Auto-line lets the width follow the brightness of the spot, High
// resolution draws the rays smoothly, and Rotate matrix turns the grid with them.
//
// A spot is a summit of the tones of the grid's cells that rises at least kLeastRise above the saddle to any higher
// one, or that stands alone above the threshold. The cells are flooded from the brightest down, and what meets grows
// together (after F. Meyer's watershed of 1992), so that a lamp of many cells is one spot and so is each of two lamps
// in the same glow.
#include <cmath>

#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/rows.h"
#include "image/geometry/direction.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(920, "Cell size:", &P::FilterStarCellsize, {2, 50})
        .In(Unit::Pixels)
        .Help("Looks for bright spots in cells of this width and height; smaller spots get no star."),
    Slider(921, "Threshold:", &P::FilterStarThreshold, {8, 248})
        .In(Unit::Levels)
        .Help("Puts stars on spots that are brighter than this; the brighter, the larger."),
    Slider(922, "Angle:", &P::FilterStarAngle, {0, 359})
        .In(Unit::Degrees)
        .Help("Turns the rays of the stars counter-clockwise."),
    Slider(923, "Brightness:", &P::FilterStarBrightness, {1, 5}).Help("Sets how strong the light of the stars is."),
    Slider(924, "Line size:", &P::FilterStarLinesize, {1, 16})
        .In(Unit::Pixels)
        .Help("Makes the rays this wide at their root."),
    CheckBox(925, "Auto-line", &P::FilterStarAutoline).Help("Makes the rays of brighter spots wider, up to double."),
    CheckBox(926, "High resolution", &P::FilterStarHighres).Help("Draws the rays with smooth edges."),
    CheckBox(927, "Rotate matrix", &P::FilterStarRotmatrix)
        .Help("Turns the grid in which spots are looked for with the rays."),
};

constexpr int64_t kMostCells = 3'500'000; ///< of 17 bytes each; larger pictures get larger cells
constexpr int32_t kMostStars = 400;       ///< the brightest count
constexpr int32_t kLeastRise = 40;        ///< of a spot above what joins it to a brighter one, in levels

/// A bright spot: a place in cells and its tone.
struct Spot {
    double x, y;
    int32_t tone;
};

/// The grid of cells over a picture, turned or not.
struct Grid {
    static constexpr int64_t kCell = int64_t{1} << 32; ///< one cell in the units of places

    int32_t cell;     ///< side in pixels
    int64_t right[2]; ///< how a step to the right moves across and down the grid
    int64_t down[2];  ///< the same for a step down
    int64_t start[2]; ///< where the middle of the top left pixel lies
    int32_t columns, rows;

    Grid(const ReadView &picture, int32_t cellSize, Direction turn) : cell(cellSize) {
        while (Lay(picture, turn) > kMostCells) cell++;
    }

    /// @return the number of cells.
    int64_t Lay(const ReadView &picture, Direction turn) {
        const int64_t unit = kCell / Direction::kOne;
        const int64_t along = turn.cosine * unit / cell, aside = turn.sine * unit / cell;
        right[0] = along;
        right[1] = aside;
        down[0] = -aside;
        down[1] = along;
        int64_t count = 1;
        int32_t *const sides[2] = {&columns, &rows};
        for (int32_t i = 0; i < 2; i++) {
            const int64_t far[2] = {right[i] * (picture.width - 1), down[i] * (picture.height - 1)};
            const int64_t least = std::min<int64_t>(far[0], 0) + std::min<int64_t>(far[1], 0);
            const int64_t most = std::max<int64_t>(far[0], 0) + std::max<int64_t>(far[1], 0);
            start[i] = kCell / cell / 2 - least;
            *sides[i] = static_cast<int32_t>((most - least) / kCell) + 2;
            count *= *sides[i];
        }
        return count;
    }
    int64_t Count() const { return int64_t{columns} * rows; }
    uint64_t Cells() const { return static_cast<uint64_t>(Count()); }
};

/// The mean tone of every cell; 0 where less than half a cell lies in the picture.
/// @return false without memory.
bool TakeTones(const ReadView &from, const Grid &grid, uint8_t *tones) {
    BlockArray<uint32_t> sums(grid.Cells()), counts(grid.Cells());
    BlockArray<uint8_t> grey(static_cast<uint64_t>(from.width));
    if (!sums || !counts || !grey) return false;
    std::fill(sums.data, sums.data + grid.Count(), 0u);
    std::fill(counts.data, counts.data + grid.Count(), 0u);
    for (int32_t y = 0; y < from.height; y++) {
        GreyRow(grey.data, from.Row(y), from.width);
        int64_t across = grid.start[0] + y * grid.down[0], down = grid.start[1] + y * grid.down[1];
        for (int32_t x = 0; x < from.width; x++, across += grid.right[0], down += grid.right[1]) {
            const int64_t i = (down >> 32) * grid.columns + (across >> 32);
            sums[i] += grey[x];
            counts[i]++;
        }
    }
    const auto least = std::min<int64_t>(int64_t{grid.cell} * grid.cell, int64_t{from.width} * from.height) / 2;
    for (int64_t i = 0; i < grid.Count(); i++)
        tones[i] = static_cast<uint8_t>(counts[i] > 0 && counts[i] >= least ? sums[i] / counts[i] : 0);
    return true;
}

/// Finds the summits of the tones of a grid.
struct Flood {
    /// What has grown from a summit: the places of the cells of its tone, and the first of them.
    struct Hill {
        int64_t sumX, sumY;
        int32_t count, parent, tone, first;
    };

    const Grid &grid;
    const BlockArray<uint8_t> &tones;
    BlockArray<int32_t> order, hillOf; ///< the cells from the brightest down; 1 + the hill of each cell, 0 for none
    BlockArray<Hill> hills;
    int32_t hillCount = 0;

    /// No two summits are neighbours, so there is at most one in each 2 x 2 cells.
    Flood(const Grid &cells, const BlockArray<uint8_t> &tonesOfCells)
        : grid(cells), tones(tonesOfCells), order(grid.Cells()), hillOf(grid.Cells()),
          hills(static_cast<uint64_t>((grid.columns + 1) / 2) * static_cast<uint64_t>((grid.rows + 1) / 2)) {}
    explicit operator bool() const { return order && hillOf && hills; }

    int32_t RootOf(int32_t hill) {
        while (hills[hill].parent != hill) hill = hills[hill].parent = hills[hills[hill].parent].parent;
        return hill;
    }

    /// Calls found(spot) for every spot whose tone is above the threshold.
    template <typename Found>
    void Run(int32_t threshold, Found found) {
        const int32_t count = Sort(threshold);
        std::fill(hillOf.data, hillOf.data + grid.Count(), 0);
        for (int32_t i = 0; i < count; i++) Rise(order[i], found);
        for (int32_t i = 0; i < hillCount; i++)
            if (hills[i].parent == i) found(SpotOf(hills[i]));
    }

private:
    /// A spot stands in the middle of its brightest cells, or on one of them where they lie round something dark.
    Spot SpotOf(const Hill &hill) const {
        const int64_t x = (hill.sumX + hill.count / 2) / hill.count, y = (hill.sumY + hill.count / 2) / hill.count;
        if (tones[y * grid.columns + x] < hill.tone - kLeastRise)
            return {hill.first % grid.columns + 0.5, hill.first / grid.columns + 0.5, hill.tone};
        return {static_cast<double>(hill.sumX) / hill.count + 0.5, static_cast<double>(hill.sumY) / hill.count + 0.5,
                hill.tone};
    }

    /// @return the number of cells above the threshold.
    int32_t Sort(int32_t threshold) {
        int32_t ends[257] = {};
        for (int64_t i = 0; i < grid.Count(); i++)
            if (tones[i] > threshold) ends[255 - tones[i] + 1]++;
        for (int32_t i = 0; i < 256; i++) ends[i + 1] += ends[i];
        const int32_t count = ends[256];
        for (int32_t i = 0; i < static_cast<int32_t>(grid.Count()); i++)
            if (tones[i] > threshold) order[ends[255 - tones[i]]++] = i;
        return count;
    }

    /// Takes the next darker cell to the hills around it.
    template <typename Found>
    void Rise(int32_t cell, Found found) {
        const int32_t x = cell % grid.columns, y = cell / grid.columns, tone = tones[cell];
        int32_t own = -1;
        for (int32_t ny = std::max(y - 1, 0); ny <= std::min(y + 1, grid.rows - 1); ny++) {
            for (int32_t nx = std::max(x - 1, 0); nx <= std::min(x + 1, grid.columns - 1); nx++) {
                const int32_t neighbour = hillOf[int64_t{ny} * grid.columns + nx];
                if (neighbour == 0) continue;
                const int32_t other = RootOf(neighbour - 1);
                own = own < 0 || own == other ? other : Join(own, other, tone, found);
            }
        }
        if (own < 0) {
            own = hillCount++;
            hills[own] = {0, 0, 0, own, tone, cell};
        }
        hillOf[cell] = own + 1;
        if (tone == hills[own].tone) {
            hills[own].sumX += x;
            hills[own].sumY += y;
            hills[own].count++;
        }
    }

    /// Two hills meet at a saddle. The lower one, or else the later one, is a spot if it rises enough, and goes on as a
    /// part of the other one.
    template <typename Found>
    int32_t Join(int32_t a, int32_t b, int32_t saddle, Found found) {
        if (hills[a].tone < hills[b].tone || (hills[a].tone == hills[b].tone && b < a)) std::swap(a, b);
        if (hills[b].tone - saddle >= kLeastRise) {
            found(SpotOf(hills[b]));
        } else if (hills[a].tone == hills[b].tone) {
            hills[a].sumX += hills[b].sumX;
            hills[a].sumY += hills[b].sumY;
            hills[a].count += hills[b].count;
        }
        hills[b].parent = a;
        return a;
    }
};

/// The brightest spots, at most kMostStars; of equal ones those that came first.
struct Spots {
    BlockArray<Spot> list;
    int32_t count = 0;

    Spots() : list(kMostStars) {}
    void Add(const Spot &spot) {
        if (count == kMostStars && list[count - 1].tone >= spot.tone) return;
        if (count < kMostStars) count++;
        int32_t i = count - 1;
        for (; i > 0 && list[i - 1].tone < spot.tone; i--) list[i] = list[i - 1];
        list[i] = spot;
    }
};

/// One star in pixels. Only sums, products, quotients and square roots: the same everywhere.
struct Star {
    double x, y; ///< centre; the middle of the top left pixel is (0.5, 0.5)
    double cosine, sine;
    double reach;    ///< length of the rays
    double width;    ///< of the rays at their root
    double strength; ///< light at the root, 1 for white
    double color[3]; ///< blue, green, red, 0 to 1
    bool isSmooth;

    /// The light at a point that lies `along` and `aside` of one ray.
    double RayAt(double along, double aside) const {
        if (along >= reach) return 0;
        const double left = 1 - along / reach, half = width * (0.25 + 0.75 * left) / 2;
        const double cover = isSmooth ? std::clamp(half + 0.5 - aside, 0.0, 1.0) * std::min(2 * half, 1.0)
                                      : (aside <= std::max(half, 0.5) ? 1.0 : 0.0);
        return cover * left * left;
    }
    /// The light in the middle of a pixel.
    double At(double dx, double dy) const {
        const double along = std::abs(dx * cosine - dy * sine), aside = std::abs(dx * sine + dy * cosine);
        const double glowReach = reach / 5, distance = std::sqrt(dx * dx + dy * dy);
        const double glow = distance < glowReach ? (1 - distance / glowReach) * (1 - distance / glowReach) : 0;
        return strength * (std::max(RayAt(along, aside), RayAt(aside, along)) + glow * 0.75);
    }
    void Add(const WriteView &to, int32_t px, int32_t py) const {
        const double light = At(px + 0.5 - x, py + 0.5 - y) * 255;
        if (light <= 0) return;
        uint8_t *pixel = to.Row(py) + int64_t{px} * 3;
        for (int32_t c = 0; c < 3; c++)
            pixel[c] = static_cast<uint8_t>(std::min(pixel[c] + light * color[c] + 0.5, 255.0));
    }

    /// From and to where in a row, seen from the centre; nowhere if they have crossed.
    struct Reach {
        double left, right;
    };

    /// Draws the star: in each row the pixels that one of the four rays or the glow may reach.
    void Draw(const WriteView &to) const {
        const auto limit = [](double value, int32_t end) {
            return static_cast<int32_t>(std::clamp(value, 0.0, static_cast<double>(end)));
        };
        const double margin = width / 2 + 1.5;
        const int32_t bottom = limit(y + reach + margin + 1, to.height);
        for (int32_t py = limit(y - reach - margin, to.height); py < bottom; py++) {
            const double dy = py + 0.5 - y;
            int32_t next = 0;
            const auto paint = [&](double left, double right) {
                const int32_t end = limit(x + right + 1, to.width);
                for (next = std::max(next, limit(x + left, to.width)); next < end; next++) Add(to, next, py);
            };
            // Where the two bars that hold the rays cross this row: |dx * a + dy * b| <= margin, |dx|, |dy| <= reach.
            Reach spans[3];
            const double bars[2][2] = {{sine, cosine}, {cosine, -sine}};
            for (int32_t i = 0; i < 2; i++) {
                const double a = bars[i][0], middle = -dy * bars[i][1];
                double left = -reach - margin, right = reach + margin;
                if (std::abs(a) > 1e-3) {
                    const double one = (middle - margin) / a, two = (middle + margin) / a;
                    left = std::max(left, std::min(one, two));
                    right = std::min(right, std::max(one, two));
                } else if (std::abs(middle) > margin + 1) {
                    right = left - 1;
                }
                spans[i] = {left, right};
            }
            const double glowReach = reach / 5;
            spans[2] = std::abs(dy) <= glowReach ? Reach{-glowReach, glowReach} : Reach{1, 0};
            std::sort(spans, spans + 3, [](const Reach &p, const Reach &q) { return p.left < q.left; });
            for (const Reach &span : spans)
                if (span.left <= span.right) paint(span.left, span.right);
        }
    }
};

/// Where the grid's place lies in the picture, in pixels.
void ToPixels(const Grid &grid, Direction turn, Spot *spot) {
    const double right = (spot->x - static_cast<double>(grid.start[0]) / Grid::kCell) * grid.cell;
    const double down = (spot->y - static_cast<double>(grid.start[1]) / Grid::kCell) * grid.cell;
    const double cosine = turn.cosine / double{Direction::kOne}, sine = turn.sine / double{Direction::kOne};
    spot->x = right * cosine + down * sine + 0.5;
    spot->y = down * cosine - right * sine + 0.5;
}

/// Moves a star to the middle of the light around it that is brighter than `floor`, at most a cell away, and takes its
/// colour there.
void Centre(const ReadView &from, int32_t cell, int32_t floor, Star *star) {
    double weights = 0, sumX = 0, sumY = 0, colors[3] = {};
    const auto x = static_cast<int32_t>(std::max(star->x, 0.0)), y = static_cast<int32_t>(std::max(star->y, 0.0));
    for (int32_t py = std::max(y - cell, 0); py <= std::min(y + cell, from.height - 1); py++) {
        const uint8_t *row = from.Row(py);
        for (int32_t px = std::max(x - cell, 0); px <= std::min(x + cell, from.width - 1); px++) {
            const uint8_t *pixel = row + int64_t{px} * 3;
            const int32_t weight = std::max(WeightedGrey(pixel[2], pixel[1], pixel[0]) - floor, 0);
            weights += weight;
            sumX += weight * (px + 0.5);
            sumY += weight * (py + 0.5);
            for (int32_t c = 0; c < 3; c++) colors[c] += static_cast<double>(weight * pixel[c]);
        }
    }
    if (weights > 0) {
        star->x = sumX / weights;
        star->y = sumY / weights;
    }
    const double brightest = std::max({colors[0], colors[1], colors[2]});
    for (int32_t c = 0; c < 3; c++) star->color[c] = brightest > 0 ? colors[c] / brightest : 1;
}

/// @return false without memory.
bool FindSpots(const ReadView &from, const Grid &grid, int32_t threshold, Spots *spots) {
    BlockArray<uint8_t> tones(grid.Cells());
    if (!tones || !TakeTones(from, grid, tones.data)) return false;
    Flood flood(grid, tones);
    if (!flood) return false;
    flood.Run(threshold, [&](const Spot &spot) { spots->Add(spot); });
    return true;
}

DibHandle StarsKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const ReadView &from = pass.From();
    const int32_t threshold = context.FilterStarThreshold;
    const Direction rays = DirectionOf(context.FilterStarAngle);
    const Direction turn = context.FilterStarRotmatrix != 0 ? rays : DirectionOf(0);
    const Grid grid(from, context.FilterStarCellsize, turn);
    Spots spots;
    if (!spots.list || !FindSpots(from, grid, threshold, &spots)) return nullptr;

    for (int32_t y = 0; y < from.height; y++) std::copy_n(from.Row(y), int64_t{from.width} * 3, pass.To().Row(y));
    for (int32_t i = 0; i < spots.count; i++) {
        Spot &spot = spots.list[i];
        ToPixels(grid, turn, &spot);
        const double excess = (spot.tone - threshold) / static_cast<double>(255 - threshold);
        Star star{};
        star.x = spot.x;
        star.y = spot.y;
        star.cosine = rays.cosine / double{Direction::kOne};
        star.sine = rays.sine / double{Direction::kOne};
        star.reach = 2 + std::max(from.width, from.height) / 8.0 * excess;
        star.width = context.FilterStarLinesize * (context.FilterStarAutoline != 0 ? 0.5 + 1.5 * excess : 1.0);
        star.strength = 0.25 * (1 + context.FilterStarBrightness) * std::min(0.25 + 1.5 * excess, 1.0);
        star.isSmooth = context.FilterStarHighres != 0;
        star.width = std::min(star.width, star.reach / 2);
        Centre(from, grid.cell, std::max(threshold, spot.tone - kLeastRise), &star);
        star.Draw(pass.To());
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kStars = MakeFilter<kPage>(StarsKernel);

} // namespace lmf
