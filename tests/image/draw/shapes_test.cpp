#include "image/draw/shapes.h"

#include <functional>
#include <string>

#include "support/pictures.h"

namespace lmf::testing {

namespace {

using Rows = std::vector<std::string>;
using Covers = std::function<bool(int64_t x, int64_t y)>;

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

/// The pixels 0 <= x < width, 0 <= y < height of a shape.
template <typename Shape>
Rows Drawn(const Shape &shape, int32_t width, int32_t height) {
    Rows rows(static_cast<size_t>(height), std::string(static_cast<size_t>(width), '.'));
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++)
            if (Holds(shape, x, y)) rows[static_cast<size_t>(y)][static_cast<size_t>(x)] = '#';
    }
    return rows;
}

/// Compares every pixel of a window.
template <typename Shape>
void ExpectCovers(const Shape &shape, const Covers &covers, int64_t first, int64_t end) {
    for (int64_t y = first; y < end; y++) {
        std::vector<bool> row(static_cast<size_t>(end - first));
        ForEachSpan(shape, y, [&](const RowSpan &span) {
            for (int64_t x = std::max(span.left, first); x < std::min(span.right, end); x++)
                row[static_cast<size_t>(x - first)] = true;
        });
        for (int64_t x = first; x < end; x++)
            ASSERT_EQ(row[static_cast<size_t>(x - first)], covers(x, y)) << x << ',' << y;
    }
}

/// Compares the pixels on both sides of all ends of spans, and some others, in some rows.
template <typename Shape>
void ExpectCoversSome(const Shape &shape, const Covers &covers, uint32_t *random) {
    const auto between = [&](int64_t first, int64_t end) {
        const uint64_t far = static_cast<uint64_t>(TestRandom(random)) << 16 ^ TestRandom(random);
        return end > first ? first + static_cast<int64_t>(far % static_cast<uint64_t>(end - first)) : first;
    };
    const DrawBox &box = shape.bounds;
    for (int i = 0; i < 12; i++) {
        const int64_t ends[] = {
            box.top - 1, box.top, box.top + 1, box.bottom - 2, box.bottom - 1, box.bottom, (box.top + box.bottom) / 2};
        const int64_t y = i < 7 ? ends[i] : between(box.top, box.bottom);
        std::vector<int64_t> columns = {box.left, box.right, between(box.left, box.right),
                                        between(box.left, box.right)};
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
    return Multiply(static_cast<WideUint>(value < 0 ? -value : value),
                    static_cast<WideUint>(value < 0 ? -value : value));
}

Product operator+(const Product &a, const Product &b) {
    const WideUint low = a.low + b.low;
    return {a.high + b.high + (low < a.low ? 1 : 0), low};
}

DrawBox Turned(DrawBox box) {
    if (box.left > box.right) std::swap(box.left, box.right);
    if (box.top > box.bottom) std::swap(box.top, box.bottom);
    return box;
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
    cw = std::clamp<int64_t>(cw, 0, box.Width());
    ch = std::clamp<int64_t>(ch, 0, box.Height());
    for (const bool right : {false, true}) {
        for (const bool bottom : {false, true}) {
            const int64_t left = right ? box.right - cw : box.left, top = bottom ? box.bottom - ch : box.top;
            // Is the pixel's centre in the half of the corner's ellipse that lies towards the corner?
            const bool inX = right ? 2 * x + 1 > 2 * left + cw : 2 * x + 1 < 2 * left + cw;
            const bool inY = bottom ? 2 * y + 1 > 2 * top + ch : 2 * y + 1 < 2 * top + ch;
            if (inX && inY && !InEllipse({left, top, left + cw, top + ch}, x, y)) return false;
        }
    }
    return true;
}

/// What a pen leaves: `inside(margin, x, y)` is the shape grown by a margin.
Covers Penned(int64_t outer, int64_t inner, const std::function<bool(int64_t, int64_t, int64_t)> &inside) {
    return [=](int64_t x, int64_t y) { return inside(outer, x, y) && !inside(-inner, x, y); };
}

/// Expects a box shape and its outlines to hold what the definition `inside(margin, x, y)` says.
template <typename Shape, typename Check>
void ExpectWithOutlines(const Shape &shape, int32_t pen, const std::function<bool(int64_t, int64_t, int64_t)> &inside,
                        Check check) {
    const int64_t width = std::max(pen, 0);
    check(shape, [&](int64_t x, int64_t y) { return inside(0, x, y); });
    check(Outline(shape, pen), Penned(width / 2, width - width / 2, inside));
    check(InsideFrame(shape, pen), Penned(0, width, inside));
}

template <typename Check>
void ExpectBoxShapes(const DrawBox &box, int64_t cornerWidth, int64_t cornerHeight, int32_t pen, Check check) {
    SCOPED_TRACE(std::to_string(box.left) + "," + std::to_string(box.top) + "," + std::to_string(box.right) + "," +
                 std::to_string(box.bottom) + " corners " + std::to_string(cornerWidth) + "," +
                 std::to_string(cornerHeight) + " pen " + std::to_string(pen));
    const DrawBox turned = Turned(box);
    const auto grown = [=](int64_t margin) {
        return DrawBox{turned.left - margin, turned.top - margin, turned.right + margin, turned.bottom + margin};
    };
    ExpectWithOutlines(
        RectangleShape(box), pen, [=](int64_t m, int64_t x, int64_t y) { return InBox(grown(m), x, y); }, check);
    ExpectWithOutlines(
        EllipseShape(box), pen, [=](int64_t m, int64_t x, int64_t y) { return InEllipse(grown(m), x, y); }, check);
    ExpectWithOutlines(
        RoundRectShape(box, cornerWidth, cornerHeight), pen,
        [=](int64_t m, int64_t x, int64_t y) {
            const auto corner = [=](int64_t size, int64_t side) {
                return std::max<int64_t>(std::clamp<int64_t>(size, 0, side) + 2 * m, 0);
            };
            return InRoundRect(grown(m), corner(cornerWidth, turned.Width()), corner(cornerHeight, turned.Height()), x,
                               y);
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
    EXPECT_EQ(Drawn(EllipseShape({0, 0, 4, 4}), 5, 4), (Rows{".##..", "####.", "####.", ".##.."}));
    EXPECT_EQ(Drawn(EllipseShape({7, 3, 0, 0}), 7, 3), (Rows{".#####.", "#######", ".#####."}));
    EXPECT_EQ(Drawn(RoundRectShape({0, 0, 8, 4}, 4, 4), 8, 4), (Rows{".######.", "########", "########", ".######."}));
    EXPECT_EQ(Drawn(Outline(RectangleShape({2, 2, 6, 5}), 2), 8, 7),
              (Rows{"........", ".######.", ".######.", ".##..##.", ".######.", ".######.", "........"}));
    EXPECT_EQ(Drawn(InsideFrame(RectangleShape({1, 0, 6, 4}), 1), 7, 4),
              (Rows{".#####.", ".#...#.", ".#...#.", ".#####."}));
    EXPECT_EQ(Drawn(InsideFrame(RectangleShape({1, 0, 6, 4}), 2), 7, 4),
              (Rows{".#####.", ".#####.", ".#####.", ".#####."}));

    const DrawPoint triangle[] = {{0, 0}, {4, 0}, {0, 4}};
    EXPECT_EQ(Drawn(PolygonShape(triangle, PolygonFill::kWinding), 4, 4), (Rows{"###.", "##..", "#...", "...."}));
    const DrawPoint twice[] = {{0, 0}, {6, 0}, {6, 4}, {0, 4}, {0, 0}, {2, 1}, {4, 1}, {4, 3}, {2, 3}, {2, 1}};
    EXPECT_EQ(Drawn(PolygonShape(twice, PolygonFill::kAlternate), 6, 4),
              (Rows{"######", "##..##", "##..##", "######"}));
    EXPECT_EQ(Drawn(PolygonShape(twice, PolygonFill::kWinding), 6, 4), Rows(4, "######"));

    const auto line = [](DrawPoint from, DrawPoint to, int32_t width, LineEnds ends) {
        return Drawn(LineShape(from, to, width, ends), 7, 5);
    };
    EXPECT_EQ(line({0, 0}, {5, 2}, 1, LineEnds::kRound), (Rows{"##.....", "..##...", "....#..", ".......", "......."}));
    EXPECT_EQ(line({0, 0}, {4, 2}, 1, LineEnds::kSquare),
              (Rows{"#......", ".##....", "...#...", ".......", "......."}));
    EXPECT_EQ(line({4, 2}, {0, 0}, 0, LineEnds::kRound), (Rows{".#.....", "..##...", "....#..", ".......", "......."}));
    EXPECT_EQ(line({2, 2}, {4, 2}, 2, LineEnds::kRound), (Rows{".......", "..###..", ".#####.", "..###..", "......."}));
    EXPECT_EQ(line({2, 2}, {4, 2}, 2, LineEnds::kSquare),
              (Rows{".......", ".#####.", ".#####.", ".#####.", "......."}));
    EXPECT_EQ(line({3, 2}, {3, 2}, 2, LineEnds::kRound), (Rows{".......", "...#...", "..###..", "...#...", "......."}));
    EXPECT_EQ(line({3, 2}, {3, 2}, 2, LineEnds::kSquare),
              (Rows{".......", "..###..", "..###..", "..###..", "......."}));
    EXPECT_EQ(line({3, 2}, {3, 2}, 1, LineEnds::kSquare), Rows(5, "......."));
}

TEST(Shapes, BoxesHoldWhatTheirDefinitionSays) {
    const auto check = [](const auto &shape, const Covers &covers) { ExpectCovers(shape, covers, -18, 34); };
    uint32_t random = 1;
    for (int32_t width = 0; width <= 12; width++) {
        for (int32_t height = 0; height <= 12; height++) {
            const int32_t pen = Near(&random, -1, 9);
            ExpectBoxShapes({width % 3, 0, width % 3 + width, height}, width / 2, height, pen, check);
        }
    }
    for (int i = 0; i < 150; i++) {
        const DrawBox box = {Near(&random, -5, 25), Near(&random, -5, 25), Near(&random, -5, 25),
                             Near(&random, -5, 25)};
        ExpectBoxShapes(box, Near(&random, -3, 35), Near(&random, -3, 35), Near(&random, 0, 14), check);
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
        const DrawBox box = {AnyCoordinate(&random), AnyCoordinate(&random), AnyCoordinate(&random),
                             AnyCoordinate(&random)};
        ExpectBoxShapes(box, AnyCoordinate(&random), AnyCoordinate(&random), AnyCoordinate(&random), check);
    }
    // Sides as drawings have them, where the rounding of the first guess matters least and ties most.
    for (int i = 0; i < 300; i++) {
        const DrawBox box = {0, 0, Near(&random, 1, 70000), Near(&random, 1, 70000)};
        ExpectBoxShapes(box, Near(&random, 0, 70000), Near(&random, 0, 70000), Near(&random, 0, 300), check);
    }
}

TEST(Shapes, EllipsesSettleWhatAFloatingGuessMisses) {
    struct Case {
        int64_t width, height, row;
    };
    // A square root in floating numbers ends one pixel short of the first two, and one too far in the others.
    for (const Case &c : {Case{3684243911, 2670561118, 2446489365}, Case{4029677689, 3581092548, 1589441600},
                          Case{2685199630, 3090302300, 2079373078}, Case{2255097268, 3032080064, 1114718317}}) {
        const DrawBox box = {INT32_MIN, INT32_MIN, INT32_MIN + c.width, INT32_MIN + c.height};
        const int64_t y = box.top + c.row;
        const RowSpan span = EllipseShape(box).SpanAt(y);
        EXPECT_TRUE(InEllipse(box, span.left, y) && InEllipse(box, span.right - 1, y)) << c.width;
        EXPECT_FALSE(InEllipse(box, span.left - 1, y) || InEllipse(box, span.right, y)) << c.width;
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
    const std::vector<DrawPoint> most(many.begin(), many.begin() + PolygonShape::kMostPoints);
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
        ExpectCovers(
            LineShape(from, to, Near(&random, -1, 1), LineEnds::kRound),
            [&](int64_t x, int64_t y) {
                return std::any_of(stepped.begin(), stepped.end(),
                                   [=](const DrawPoint &at) { return at.x == x && at.y == y; });
            },
            -1, 22);
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
        for (int i = 0; i < 400; i++) {
            const Line line = {{Near(&random, 0, 16), Near(&random, 0, 16)},
                               {Near(&random, 0, 16), Near(&random, 0, 16)},
                               Near(&random, 2, 15),
                               ends};
            ExpectCovers(
                LineShape(line.from, line.to, line.width, ends),
                [&](int64_t x, int64_t y) { return InWideLine(line, x, y); }, -14, 30);
        }
        for (int i = 0; i < 400; i++) {
            const Line line = {{AnyCoordinate(&random), AnyCoordinate(&random)},
                               {AnyCoordinate(&random), AnyCoordinate(&random)},
                               i % 2 == 0 ? Near(&random, 2, 500) : std::max(AnyCoordinate(&random), 2),
                               ends};
            ExpectCoversSome(
                LineShape(line.from, line.to, line.width, ends),
                [&](int64_t x, int64_t y) { return InWideLine(line, x, y); }, &random);
        }
    }
}

} // namespace lmf::testing
