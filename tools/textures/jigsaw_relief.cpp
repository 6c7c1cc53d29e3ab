#include "jigsaw_relief.h"

#include <algorithm>
#include <iterator>

#include "tile.h"

namespace lmf::drawing {
namespace {

constexpr int32_t kColumns = 4, kRows = 3; // of pieces
constexpr double kPieceWidth = static_cast<double>(kReliefWidth) / kColumns;
constexpr double kPieceHeight = static_cast<double>(kReliefHeight) / kRows;

constexpr double kFlat = 127, kContrast = 108; // tones: of the flat parts; of the steepest bevel at most, up and down
constexpr double kBevel = 10;                  // pixels from the cut to the flat part
constexpr double kGroove = 1.6, kGrooveDepth = 60; // pixels and tones of the dark line where two pieces meet

constexpr int32_t kFine = 3; // samples a pixel in each direction
constexpr int32_t kFineWidth = kReliefWidth * kFine, kFineHeight = kReliefHeight * kFine;

/// What a sample knows of the nearest cut so far.
struct Nearest {
    double square = kBevel * kBevel; ///< of the distance in pixels
    double dx = 0, dy = 0;           ///< the way to it
};

/// Half the outline of a knob as two cubic Bezier curves (P. Bezier, 1962), from a corner of the piece to the tip of
/// the knob, along the edge and off it in edge lengths. The neck is narrower than the head, so that pieces hold.
constexpr Point kHalfOutline[] = {{0, 0},        {0.22, -0.01}, {0.475, -0.03}, {0.41, 0.06},
                                  {0.345, 0.15}, {0.36, 0.25},  {0.5, 0.25}};

Point OnCurve(const Point *four, double t) {
    const double s = 1 - t, a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
    return {a * four[0].x + b * four[1].x + c * four[2].x + d * four[3].x,
            a * four[0].y + b * four[1].y + c * four[2].y + d * four[3].y};
}

/// Outline of an edge with its knob from (0, 0) to (1, 0).
std::vector<Point> EdgeOutline() {
    constexpr int32_t kSteps = 24; // of each curve
    std::vector<Point> outline;
    for (int32_t i = 0; i < 2 * kSteps; i++)
        outline.push_back(OnCurve(kHalfOutline + i / kSteps * 3, static_cast<double>(i % kSteps) / kSteps));
    outline.push_back(std::end(kHalfOutline)[-1]);
    for (size_t i = outline.size() - 1; i-- > 0;) outline.push_back({1 - outline[i].x, outline[i].y});
    return outline;
}

struct Relief {
    std::vector<Nearest> samples = std::vector<Nearest>(size_t{kFineWidth} * kFineHeight);

    /// Where the sample of a column and a row lies; those that are a little outside continue on the opposite side.
    static size_t IndexOf(int32_t column, int32_t row) {
        return static_cast<size_t>((row + kFineHeight) % kFineHeight) * kFineWidth +
               static_cast<size_t>((column + kFineWidth) % kFineWidth);
    }

    /// Tells the samples within the bevel's reach of a straight piece of a cut.
    void CutStraight(Point from, Point to) {
        const auto first = [](double a, double b) {
            return static_cast<int32_t>(std::floor((std::min(a, b) - kBevel) * kFine));
        };
        const auto last = [](double a, double b) {
            return static_cast<int32_t>(std::ceil((std::max(a, b) + kBevel) * kFine));
        };
        const double wayX = to.x - from.x, wayY = to.y - from.y, length = wayX * wayX + wayY * wayY;
        for (int32_t row = first(from.y, to.y); row <= last(from.y, to.y); row++) {
            for (int32_t column = first(from.x, to.x); column <= last(from.x, to.x); column++) {
                const double x = (column + 0.5) / kFine - from.x, y = (row + 0.5) / kFine - from.y;
                const double along = std::clamp((x * wayX + y * wayY) / length, 0.0, 1.0);
                const double dx = along * wayX - x, dy = along * wayY - y, square = dx * dx + dy * dy;
                Nearest &sample = samples[IndexOf(column, row)];
                if (square < sample.square) sample = {square, dx, dy};
            }
        }
    }

    /// Cuts along an edge between two corners; its knob varies at random and is on either side.
    void CutEdge(Random *random, Point from, Point to) {
        const double side = random->Unit() < 0.5 ? -1 : 1, height = side * random->Between(0.9, 1.1);
        const double shift = random->Between(-0.06, 0.06);
        const double wayX = to.x - from.x, wayY = to.y - from.y;
        Point last = from;
        for (const Point &point : EdgeOutline()) {
            const double along = point.x + shift * 4 * point.x * (1 - point.x), off = point.y * height;
            const Point next = {from.x + along * wayX - off * wayY, from.y + along * wayY + off * wayX};
            if (next.x != last.x || next.y != last.y) CutStraight(last, next);
            last = next;
        }
    }

    static double ToneOf(const Nearest &nearest) {
        if (nearest.square >= kBevel * kBevel) return kFlat;
        const double distance = std::sqrt(nearest.square);
        // The bevel falls towards the cut, so the way to the cut is the way that it faces; the light is at (-1, -1).
        const double facing = distance > 0 ? -(nearest.dx + nearest.dy) / distance * 0.7071067811865476 : 0;
        const double steepness = 1 - distance / kBevel;
        return kFlat + kContrast * steepness * facing - kGrooveDepth * (1 - Step(0.4, kGroove, distance));
    }
};

} // namespace

std::vector<uint8_t> DrawRelief() {
    Relief relief;
    Random random{676};
    Point shifts[kRows][kColumns]; // of the corners from the regular grid
    for (auto &row : shifts)
        for (Point &shift : row) shift = {random.Between(-7, 7), random.Between(-7, 7)};
    const auto corner = [&](int32_t column, int32_t row) {
        const Point &shift = shifts[row % kRows][column % kColumns];
        return Point{column * kPieceWidth + shift.x, row * kPieceHeight + shift.y};
    };
    for (int32_t row = 0; row < kRows; row++) {
        for (int32_t column = 0; column < kColumns; column++) {
            relief.CutEdge(&random, corner(column, row), corner(column + 1, row));
            relief.CutEdge(&random, corner(column, row), corner(column, row + 1));
        }
    }

    std::vector<uint8_t> tones;
    for (int32_t y = 0; y < kReliefHeight; y++) {
        for (int32_t x = 0; x < kReliefWidth; x++) {
            double sum = 0;
            for (int32_t i = 0; i < kFine * kFine; i++) {
                const int32_t row = y * kFine + i / kFine, column = x * kFine + i % kFine;
                sum += Relief::ToneOf(relief.samples[Relief::IndexOf(column, row)]);
            }
            tones.push_back(static_cast<uint8_t>(std::clamp(sum / (kFine * kFine) + 0.5, 0.0, 255.0)));
        }
    }
    return tones;
}

} // namespace lmf::drawing
