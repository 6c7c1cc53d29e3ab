#include "image/draw/shapes.h"

#include <functional>
#include <string>

#include "support/pictures.h"

namespace lmf::testing {

namespace {

using Covers = std::function<bool(int64_t x, int64_t y)>;
/// The definition of a shape that is grown by a margin.
using Inside = std::function<bool(int64_t margin, int64_t x, int64_t y)>;

/// Is the pixel in one of the row's spans? Sees to it that these are in order.
template <typename Shape>
bool Holds(const Shape &shape, int64_t x, int64_t y) {
    bool holds = false;
    int64_t end = INT64_MIN;
    ForEachSpan(shape, y, [&](const RowSpan &span) {
        EXPECT_TRUE(!span.IsEmpty() && span.left >= end && shape.bounds.HasRow(y) && span.left >= shape.bounds.left &&
                    span.right <= shape.bounds.right);
        end = span.right;
        holds = holds || (x >= span.left && x < span.right);
    });
    return holds;
}

/// Compares every pixel of a window.
template <typename Shape>
void ExpectCovers(const Shape &shape, const Covers &covers, int64_t first, int64_t end) {
    for (int64_t y = first; y < end; y++)
        for (int64_t x = first; x < end; x++) ASSERT_EQ(Holds(shape, x, y), covers(x, y)) << x << ',' << y;
}

/// The same with a drawing that has its upper left corner at the origin.
template <typename Shape>
void ExpectDrawn(const Shape &shape, const std::vector<std::string> &rows) {
    const auto inside = [&](int64_t x, int64_t y) {
        return y >= 0 && y < std::ssize(rows) && x >= 0 && x < std::ssize(rows[static_cast<size_t>(y)]);
    };
    ExpectCovers(
        shape,
        [&](int64_t x, int64_t y) {
            return inside(x, y) && rows[static_cast<size_t>(y)][static_cast<size_t>(x)] == '#';
        },
        -3, 10);
}

/// Compares the pixels on both sides of all ends of spans, and some others, in some rows.
template <typename Shape>
void ExpectCoversSome(const Shape &shape, const Covers &covers, uint32_t *random) {
    const auto between = [&](int64_t first, int64_t end) {
        const uint64_t far = static_cast<uint64_t>(TestRandom(random)) << 16 ^ TestRandom(random);
        return end > first ? first + static_cast<int64_t>(far % static_cast<uint64_t>(end - first)) : first;
    };
    const DrawBox &box = shape.bounds;
    std::vector<int64_t> rows = {
        box.top - 1, box.top, box.top + 1, box.bottom - 2, box.bottom - 1, box.bottom, (box.top + box.bottom) / 2};
    while (rows.size() < 12) rows.push_back(between(box.top, box.bottom));
    for (const int64_t y : rows) {
        std::vector<int64_t> columns = {box.left, box.right, between(box.left, box.right)};
        ForEachSpan(shape, y, [&](const RowSpan &span) {
            columns.insert(columns.end(), {span.left - 1, span.left, span.right - 1, span.right});
        });
        for (int64_t x : columns) ASSERT_EQ(Holds(shape, x, y), covers(x, y)) << x << ',' << y;
    }
}

/// A number of 256 bits.
struct Product {
    WideUint high, low;

    auto operator<=>(const Product &) const = default;
};

Product Multiply(WideUint a, WideUint b) {
    const WideUint mask = UINT64_MAX;
    const WideUint low = (a & mask) * (b & mask), high = (a >> 64) * (b >> 64);
    const WideUint first = (a >> 64) * (b & mask), second = (a & mask) * (b >> 64);
    const WideUint middle = (low >> 64) + (first & mask) + (second & mask);
    return {high + (first >> 64) + (second >> 64) + (middle >> 64), middle << 64 | (low & mask)};
}

Product Square(WideInt value) {
    const auto size = static_cast<WideUint>(value < 0 ? -value : value);
    return Multiply(size, size);
}

Product operator+(const Product &a, const Product &b) {
    const WideUint low = a.low + b.low;
    return {a.high + b.high + (low < a.low ? 1 : 0), low};
}

bool InBox(const DrawBox &box, int64_t x, int64_t y) {
    return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

/// The definition, for a box in order.
bool InEllipse(const DrawBox &box, int64_t x, int64_t y) {
    if (!InBox(box, x, y)) return false;
    const WideInt w = box.Width(), h = box.Height();
    const WideInt dx = 2 * x + 1 - (box.left + box.right), dy = 2 * y + 1 - (box.top + box.bottom);
    return Square(dx * h) + Square(dy * w) <= Square(w * h);
}

bool InRoundRect(const DrawBox &box, int64_t cw, int64_t ch, int64_t x, int64_t y) {
    if (!InBox(box, x, y)) return false;
    for (const bool right : {false, true}) {
        for (const bool bottom : {false, true}) {
            const int64_t left = right ? box.right - cw : box.left, top = bottom ? box.bottom - ch : box.top;
            // Is the pixel's centre in the half of the corner's ellipse that lies towards the corner?
            const int64_t dx = 2 * (x - left) + 1 - cw, dy = 2 * (y - top) + 1 - ch;
            if ((right ? dx > 0 : dx < 0) && (bottom ? dy > 0 : dy < 0) &&
                !InEllipse({left, top, left + cw, top + ch}, x, y))
                return false;
        }
    }
    return true;
}

/// Expects a box shape and its outlines to hold what the definition says.
template <typename Shape, typename Check>
void ExpectWithOutlines(const Shape &shape, int32_t pen, const Inside &inside, Check check) {
    const int64_t width = std::max(pen, 0);
    const auto penned = [&](int64_t outer, int64_t inner) {
        return [=, &inside](int64_t x, int64_t y) { return inside(outer, x, y) && !inside(-inner, x, y); };
    };
    check(shape, [&](int64_t x, int64_t y) { return inside(0, x, y); });
    check(Outline(shape, pen), penned(width / 2, width - width / 2));
    check(InsideFrame(shape, pen), penned(0, width));
}

template <typename Check>
void ExpectBoxShapes(const DrawBox &box, int64_t cornerWidth, int64_t cornerHeight, int32_t pen, Check check) {
    SCOPED_TRACE(::testing::PrintToString(
        std::array{box.left, box.top, box.right, box.bottom, cornerWidth, cornerHeight, int64_t{pen}}));
    const auto grown = [&](int64_t m) {
        return DrawBox{std::min(box.left, box.right) - m, std::min(box.top, box.bottom) - m,
                       std::max(box.left, box.right) + m, std::max(box.top, box.bottom) + m};
    };
    const auto corner = [](int64_t size, int64_t side, int64_t m) {
        return std::clamp<int64_t>(std::clamp<int64_t>(size, 0, side) + 2 * m, 0, std::max<int64_t>(side + 2 * m, 0));
    };
    const DrawBox ordered = grown(0);
    ExpectWithOutlines(
        RectangleShape(box), pen, [=](int64_t m, int64_t x, int64_t y) { return InBox(grown(m), x, y); }, check);
    ExpectWithOutlines(
        EllipseShape(box), pen, [=](int64_t m, int64_t x, int64_t y) { return InEllipse(grown(m), x, y); }, check);
    ExpectWithOutlines(
        RoundRectShape(box, cornerWidth, cornerHeight), pen,
        [=](int64_t m, int64_t x, int64_t y) {
            return InRoundRect(grown(m), corner(cornerWidth, ordered.Width(), m),
                               corner(cornerHeight, ordered.Height(), m), x, y);
        },
        check);
}

/// The definition: a ray to the right counts the edges that it meets.
bool InPolygon(const std::vector<DrawPoint> &points, PolygonFill fill, int64_t x, int64_t y) {
    int32_t edges = 0, winding = 0;
    for (size_t i = 0; i < points.size(); i++) {
        const DrawPoint a = points[i], b = points[(i + 1) % points.size()];
        if (std::min(a.y, b.y) > y || std::max(a.y, b.y) <= y) continue;
        // Twice the area of centre, upper and lower point is above 0 where the edge lies to the right.
        const DrawPoint upper = a.y < b.y ? a : b, lower = a.y < b.y ? b : a;
        const WideInt area = WideInt{2 * upper.x - 2 * x - 1} * (2 * lower.y - 2 * y - 1) -
                             WideInt{2 * lower.x - 2 * x - 1} * (2 * upper.y - 2 * y - 1);
        if (area <= 0) continue;
        edges++;
        winding += a.y < b.y ? 1 : -1;
    }
    return fill == PolygonFill::kAlternate ? edges % 2 != 0 : winding != 0;
}

/// Bresenham's steps, one by one, as he wrote them.
std::vector<DrawPoint> SteppedLine(DrawPoint from, DrawPoint to) {
    std::vector<DrawPoint> line;
    const int64_t dx = std::abs(to.x - from.x), dy = std::abs(to.y - from.y);
    const int64_t stepX = to.x < from.x ? -1 : 1, stepY = to.y < from.y ? -1 : 1;
    const bool steep = dy > dx;
    const int64_t large = steep ? dy : dx, small = steep ? dx : dy;
    for (int64_t k = 0, decision = 2 * small - large; k < large; k++) {
        line.push_back(from);
        const bool diagonal = decision >= 0;
        if (diagonal || !steep) from.x += stepX;
        if (diagonal || steep) from.y += stepY;
        decision += 2 * small - (diagonal ? 2 * large : 0);
    }
    return line;
}

struct Line {
    DrawPoint from, to;
    int32_t width;
    LineEnds ends;
};

/// The definition of lines wider than 1.
bool InWideLine(const Line &line, int64_t x, int64_t y) {
    WideInt dx = line.to.x - line.from.x, dy = line.to.y - line.from.y;
    const WideInt px = x - line.from.x, py = y - line.from.y;
    WideInt length2 = dx * dx + dy * dy;
    WideInt foot = px * dx + py * dy;
    const WideInt width = line.width;
    const auto near = [&](WideInt ax, WideInt ay) { return 4 * (ax * ax + ay * ay) <= width * width; };
    if (line.ends == LineEnds::kRound) {
        if (foot <= 0) return near(px, py);
        if (foot >= length2) return near(px - dx, py - dy);
    }
    const bool isPoint = length2 == 0;
    if (isPoint) {
        dx = 1;
        length2 = 1;
        foot = px;
    }
    const auto width2 = static_cast<WideUint>(width * width);
    const Product reach = Multiply(static_cast<WideUint>(length2), width2);
    if (Square(2 * (px * dy - py * dx)) > reach) return false;
    if (line.ends == LineEnds::kRound) return true;
    const WideInt beyond = foot - (isPoint ? 0 : length2);
    return (foot >= 0 || Square(2 * foot) <= reach) && (beyond <= 0 || Square(2 * beyond) <= reach);
}

constexpr int32_t kExtremes[] = {INT32_MIN, INT32_MIN + 1, -65536, -1, 0, 1, 40000, INT32_MAX - 1, INT32_MAX};

/// A coordinate from the extremes or from anywhere.
int32_t AnyCoordinate(uint32_t *random) {
    const uint32_t choice = TestRandom(random) % 16;
    if (choice < std::size(kExtremes)) return kExtremes[choice];
    return static_cast<int32_t>(TestRandom(random) << 16 ^ TestRandom(random));
}

int32_t Near(uint32_t *random, int32_t least, int32_t most) {
    return least + static_cast<int32_t>(TestRandom(random) % static_cast<uint32_t>(most - least + 1));
}

} // namespace

TEST(Shapes, SmallOnesByHand) {
    ExpectDrawn(EllipseShape({7, 3, 0, 0}), {".#####.", "#######", ".#####."});
    ExpectDrawn(RoundRectShape({0, 0, 8, 4}, 4, 4), {".######.", "########", "########", ".######."});
    ExpectDrawn(Outline(RectangleShape({2, 2, 6, 5}), 2),
                {"", ".######.", ".######.", ".##..##.", ".######.", ".######."});
    ExpectDrawn(InsideFrame(RectangleShape({1, 0, 6, 4}), 1), {".#####.", ".#...#.", ".#...#.", ".#####."});

    const DrawPoint twice[] = {{0, 0}, {6, 0}, {6, 4}, {0, 4}, {0, 0}, {2, 1}, {4, 1}, {4, 3}, {2, 3}, {2, 1}};
    ExpectDrawn(PolygonShape(twice, PolygonFill::kAlternate), {"######", "##..##", "##..##", "######"});
    ExpectDrawn(PolygonShape(twice, PolygonFill::kWinding), std::vector<std::string>(4, "######"));

    ExpectDrawn(LineShape({0, 0}, {5, 2}, 1, LineEnds::kRound), {"##...", "..##.", "....#"});
    ExpectDrawn(LineShape({4, 2}, {0, 0}, 0, LineEnds::kRound), {".#...", "..##.", "....#"});
    ExpectDrawn(LineShape({2, 2}, {4, 2}, 2, LineEnds::kRound), {"", "..###..", ".#####.", "..###.."});
    ExpectDrawn(LineShape({3, 2}, {3, 2}, 2, LineEnds::kSquare), {"", "..###..", "..###..", "..###.."});
    ExpectDrawn(LineShape({3, 2}, {3, 2}, 1, LineEnds::kSquare), {""});
}

TEST(Shapes, BoxesHoldWhatTheirDefinitionSays) {
    const auto check = [](const auto &shape, const Covers &covers) { ExpectCovers(shape, covers, -18, 34); };
    uint32_t random = 1;
    for (int32_t i = 0; i < 300; i++) {
        const int32_t most = i % 2 == 0 ? 25 : 7;
        const auto side = [&] { return Near(&random, -5, most); };
        ExpectBoxShapes({side(), side(), side(), side()}, Near(&random, -3, most + 10), Near(&random, -3, most + 10),
                        Near(&random, -1, most / 2 + 2), check);
    }
}

TEST(Shapes, BoxesOfAllSizes) {
    uint32_t random = 2;
    const auto check = [&](const auto &shape, const Covers &covers) { ExpectCoversSome(shape, covers, &random); };
    ExpectBoxShapes({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, INT32_MAX, INT32_MAX, INT32_MAX, check);
    ExpectBoxShapes({INT32_MAX, 0, INT32_MIN, 1}, 7, 7, 5, check);
    ExpectBoxShapes({0, INT32_MIN, 1, INT32_MAX}, 1, INT32_MAX, 1, check);
    ExpectBoxShapes({INT32_MAX - 1, INT32_MIN, INT32_MAX, INT32_MIN + 1}, 0, 0, INT32_MAX, check);
    for (int i = 0; i < 300; i++) {
        const auto any = [&] { return AnyCoordinate(&random); };
        ExpectBoxShapes({any(), any(), any(), any()}, any(), any(), any(), check);
        // Sides as drawings have them, where the rounding of the first guess matters least and ties most.
        const auto side = [&] { return Near(&random, 1, 70000); };
        ExpectBoxShapes({0, 0, side(), side()}, side(), side(), Near(&random, 0, 300), check);
    }
}

TEST(Shapes, EllipsesSettleWhatAFloatingGuessMisses) {
    // A square root in floating numbers ends one pixel short of the first two, and one too far in the others.
    for (const auto &[width, height, row] : {std::array<int64_t, 3>{3684243911, 2670561118, 2446489365},
                                             {4029677689, 3581092548, 1589441600},
                                             {2685199630, 3090302300, 2079373078},
                                             {2255097268, 3032080064, 1114718317}}) {
        const DrawBox box = {INT32_MIN, INT32_MIN, INT32_MIN + width, INT32_MIN + height};
        const int64_t y = box.top + row;
        const RowSpan span = EllipseShape(box).SpanAt(y);
        EXPECT_TRUE(InEllipse(box, span.left, y) && InEllipse(box, span.right - 1, y)) << width;
        EXPECT_FALSE(InEllipse(box, span.left - 1, y) || InEllipse(box, span.right, y)) << width;
    }
}

TEST(Shapes, Polygons) {
    uint32_t random = 3;
    const auto polygon = [&](size_t count, auto coordinate) {
        std::vector<DrawPoint> points(count);
        for (DrawPoint &point : points) point = {coordinate(), coordinate()};
        return points;
    };
    for (uint32_t i = 0; i < 600; i++) {
        const bool isSmall = i % 2 == 0;
        const auto points =
            polygon(i / 2 % 10, [&] { return isSmall ? Near(&random, -3, 14) : AnyCoordinate(&random); });
        for (const PolygonFill fill : {PolygonFill::kAlternate, PolygonFill::kWinding}) {
            const PolygonShape shape(points, fill);
            const Covers covers = [&](int64_t x, int64_t y) { return InPolygon(points, fill, x, y); };
            isSmall ? ExpectCovers(shape, covers, -5, 17) : ExpectCoversSome(shape, covers, &random);
        }
    }
    const auto many = polygon(PolygonShape::kMostPoints + 5, [&] { return Near(&random, 0, 40); });
    const std::vector<DrawPoint> most(many.begin(), many.end() - 5);
    ExpectCovers(
        PolygonShape(many, PolygonFill::kWinding),
        [&](int64_t x, int64_t y) { return InPolygon(most, PolygonFill::kWinding, x, y); }, -2, 43);
}

TEST(Shapes, ThinLinesAreBresenhams) {
    uint32_t random = 4;
    for (int i = 0; i < 2000; i++) {
        const DrawPoint from = {Near(&random, 0, 20), Near(&random, 0, 20)};
        const DrawPoint to = {Near(&random, 0, 20), Near(&random, 0, 20)};
        const std::vector<DrawPoint> stepped = SteppedLine(from, to);
        const Covers covers = [&](int64_t x, int64_t y) {
            return std::any_of(stepped.begin(), stepped.end(), [=](auto at) { return at.x == x && at.y == y; });
        };
        ExpectCovers(LineShape(from, to, Near(&random, -1, 1), LineEnds::kRound), covers, -1, 22);
    }
    const LineShape far({INT32_MIN, INT32_MAX}, {INT32_MAX, INT32_MIN}, 1, LineEnds::kRound);
    EXPECT_TRUE(Holds(far, INT32_MIN, INT32_MAX) && Holds(far, -1, 0) && Holds(far, INT32_MAX - 1, INT32_MIN + 1));
    EXPECT_FALSE(Holds(far, INT32_MAX, INT32_MIN) || Holds(far, 0, 0));
    const LineShape flat({INT32_MAX, 0}, {INT32_MIN, 1}, 1, LineEnds::kRound);
    EXPECT_TRUE(Holds(flat, 0, 0) && Holds(flat, -1, 1) && Holds(flat, INT32_MIN + 1, 1));
    EXPECT_FALSE(Holds(flat, -1, 0) || Holds(flat, 0, 1) || Holds(flat, INT32_MIN, 1));
}

TEST(Shapes, WideLines) {
    uint32_t random = 5;
    for (const LineEnds ends : {LineEnds::kRound, LineEnds::kSquare}) {
        for (int i = 0; i < 800; i++) {
            const bool isSmall = i % 2 == 0;
            const auto at = [&] { return isSmall ? Near(&random, 0, 16) : AnyCoordinate(&random); };
            const int32_t wide = i % 4 == 1 ? Near(&random, 2, 500) : std::max(AnyCoordinate(&random), 2);
            const Line line = {{at(), at()}, {at(), at()}, isSmall ? Near(&random, 2, 15) : wide, ends};
            const LineShape shape(line.from, line.to, line.width, ends);
            const Covers covers = [&](int64_t x, int64_t y) { return InWideLine(line, x, y); };
            isSmall ? ExpectCovers(shape, covers, -14, 30) : ExpectCoversSome(shape, covers, &random);
        }
    }
}

} // namespace lmf::testing
