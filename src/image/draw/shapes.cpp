#include "image/draw/shapes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lmf {

namespace {

constexpr int64_t kFarAway = int64_t{1} << 62; ///< beyond every coordinate

/// Corners in the right order.
DrawBox Ordered(DrawBox box) {
    if (box.left > box.right) std::swap(box.left, box.right);
    if (box.top > box.bottom) std::swap(box.top, box.bottom);
    return box;
}

/// A box larger by `margin` on each side, or an empty one where its sides would meet or cross.
DrawBox GrownBox(const DrawBox &box, int64_t margin) {
    if (box.Width() + 2 * margin <= 0 || box.Height() + 2 * margin <= 0) return {};
    return {box.left - margin, box.top - margin, box.right + margin, box.bottom + margin};
}

/// Quotient rounded down; the divisor is above 0.
WideInt FloorDivide(WideInt value, WideInt divisor) {
    const auto shortValue = static_cast<int64_t>(value), shortDivisor = static_cast<int64_t>(divisor);
    if (shortValue == value && shortDivisor == divisor)
        return shortValue / shortDivisor - (shortValue % shortDivisor < 0 ? 1 : 0);
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// Quotient rounded up; the divisor is above 0.
WideInt CeilDivide(WideInt value, WideInt divisor) {
    return -FloorDivide(-value, divisor);
}

/// Square root rounded down, digit by digit; the value is at least 0.
WideInt SquareRoot(WideInt value) {
    WideInt root = 0;
    for (WideInt bit = WideInt{1} << 126; bit != 0; bit >>= 2) {
        if (value >= root + bit) {
            value -= root + bit;
            root = (root >> 1) + bit;
        } else {
            root >>= 1;
        }
    }
    return root;
}

/// The whole numbers u for which low <= factor x u <= high, as far as they are coordinates.
RowSpan NumbersBetween(WideInt factor, WideInt low, WideInt high) {
    if (factor < 0) {
        factor = -factor;
        std::swap(low, high);
        low = -low;
        high = -high;
    }
    if (factor == 0) return low <= 0 && high >= 0 ? RowSpan{-kFarAway, kFarAway} : RowSpan{};
    const auto limit = [](WideInt number) {
        return static_cast<int64_t>(std::clamp<WideInt>(number, -kFarAway, kFarAway));
    };
    return {limit(CeilDivide(low, factor)), limit(FloorDivide(high, factor) + 1)};
}

RowSpan Common(const RowSpan &a, const RowSpan &b) {
    return {std::max(a.left, b.left), std::min(a.right, b.right)};
}

/// The shortest span that holds both.
RowSpan Hull(const RowSpan &a, const RowSpan &b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.left, b.left), std::max(a.right, b.right)};
}

} // namespace

RectangleShape::RectangleShape(const DrawBox &box) : bounds(Ordered(box)) {}

RowSpan RectangleShape::SpanAt(int64_t y) const {
    return bounds.HasRow(y) ? RowSpan{bounds.left, bounds.right} : RowSpan{};
}

RectangleShape RectangleShape::Grown(int64_t margin) const {
    return RectangleShape(GrownBox(bounds, margin));
}

EllipseShape::EllipseShape(const DrawBox &box) : bounds(Ordered(box)) {
    const auto width = static_cast<WideUint>(bounds.Width()), height = static_cast<WideUint>(bounds.Height());
    squaredWidth = width * width;
    squaredHeight = height * height;
    widthToHeight = static_cast<double>(bounds.Width()) / static_cast<double>(std::max<int64_t>(bounds.Height(), 1));
}

// With distances from the centre counted in half pixels, w and h the sides: x^2 h^2 + y^2 w^2 <= w^2 h^2. The largest
// x of a row is guessed in floating numbers, which hits it or a neighbour of it, and settled in whole ones.
RowSpan EllipseShape::SpanAt(int64_t y) const {
    if (!bounds.HasRow(y)) return {};
    const int64_t height = bounds.Height(), dy = std::abs(2 * y + 1 - (bounds.top + bounds.bottom));
    const double guess = widthToHeight * std::sqrt(static_cast<double>(height - dy) * static_cast<double>(height + dy));
    auto dx = static_cast<int64_t>(guess);
    // The two sides of the rule may pass 128 bits. Near the border their difference does not, so it is right whatever
    // is lost above.
    const auto x = static_cast<WideUint>(dx);
    const WideUint room = static_cast<WideUint>(height - dy) * static_cast<WideUint>(height + dy) * squaredWidth;
    auto rest = static_cast<WideInt>(room - x * x * squaredHeight);
    const auto step = [&] { return (2 * dx + 1) * static_cast<WideInt>(squaredHeight); };
    while (rest < 0) {
        dx--;
        rest += step();
    }
    for (; rest >= step(); dx++) rest -= step();
    // Only every other half pixel is the centre of one.
    const int64_t sum = bounds.left + bounds.right;
    if (((dx ^ sum) & 1) == 0) dx--;
    return {(sum - 1 - dx) / 2, (sum + 1 + dx) / 2};
}

EllipseShape EllipseShape::Grown(int64_t margin) const {
    return EllipseShape(GrownBox(bounds, margin));
}

RoundRectShape::RoundRectShape(const DrawBox &box, int64_t wantedCornerWidth, int64_t wantedCornerHeight)
    : bounds(Ordered(box)), corner(DrawBox{}), cornerWidth(std::clamp<int64_t>(wantedCornerWidth, 0, bounds.Width())),
      cornerHeight(std::clamp<int64_t>(wantedCornerHeight, 0, bounds.Height())) {
    corner = EllipseShape({0, 0, cornerWidth, cornerHeight});
}

RowSpan RoundRectShape::SpanAt(int64_t y) const {
    if (!bounds.HasRow(y)) return {};
    const int64_t fromEdge = std::min(y - bounds.top, bounds.bottom - 1 - y);
    if (fromEdge >= cornerHeight / 2) return {bounds.left, bounds.right};
    // Where a flat ellipse has no pixel, its empty span lies in its middle and cuts the whole corner off.
    const int64_t inset = corner.SpanAt(fromEdge).left;
    return {bounds.left + inset, bounds.right - inset};
}

RoundRectShape RoundRectShape::Grown(int64_t margin) const {
    return {GrownBox(bounds, margin), cornerWidth + 2 * margin, cornerHeight + 2 * margin};
}

PolygonShape::PolygonShape(std::span<const DrawPoint> corners, PolygonFill rule)
    : fill(rule), count(std::min(corners.size(), kMostPoints)) {
    if (count == 0) return;
    bounds = {corners[0].x, corners[0].y, corners[0].x, corners[0].y};
    for (size_t i = 0; i < count; i++) {
        points[i] = corners[i];
        bounds.left = std::min(bounds.left, corners[i].x);
        bounds.top = std::min(bounds.top, corners[i].y);
        bounds.right = std::max(bounds.right, corners[i].x);
        bounds.bottom = std::max(bounds.bottom, corners[i].y);
    }
}

size_t PolygonShape::CrossingsAt(int64_t y, Crossings *crossings) const {
    size_t found = 0;
    for (size_t i = 0; i < count; i++) {
        DrawPoint upper = points[i], lower = points[i + 1 < count ? i + 1 : 0];
        const int32_t direction = upper.y < lower.y ? 1 : -1;
        if (direction < 0) std::swap(upper, lower);
        if (y < upper.y || y >= lower.y) continue;
        // The edge crosses the row's middle at upper.x + (2 y + 1 - 2 upper.y) / 2 x width / height. It lies to the
        // right of the pixels whose number is below that less 1/2.
        const WideInt height = lower.y - upper.y, width = lower.x - upper.x;
        const WideInt crossing = height * (2 * upper.x - 1) + width * (2 * (y - upper.y) + 1);
        const Crossing made{static_cast<int64_t>(CeilDivide(crossing, 2 * height)), direction};
        size_t place = found++;
        for (; place > 0 && (*crossings)[place - 1].end > made.end; place--)
            (*crossings)[place] = (*crossings)[place - 1];
        (*crossings)[place] = made;
    }
    return found;
}

LineShape::LineShape(DrawPoint start, DrawPoint end, int32_t pen, LineEnds shapeOfEnds)
    : from(start), to(end), width(pen), ends(shapeOfEnds), dx(end.x - start.x), dy(end.y - start.y),
      squaredLength(WideInt{dx} * dx + WideInt{dy} * dy) {
    const int64_t margin = width > 1 ? width : 0;
    bounds = {std::min(from.x, to.x) - margin, std::min(from.y, to.y) - margin, std::max(from.x, to.x) + 1 + margin,
              std::max(from.y, to.y) + 1 + margin};
    if (squaredLength == 0) dx = 1;
    lengthTimesWidth = SquareRoot((WideInt{dx} * dx + WideInt{dy} * dy) * width * width);
}

RowSpan LineShape::SpanAt(int64_t y) const {
    if (!bounds.HasRow(y)) return {};
    if (width <= 1) return squaredLength > 0 ? ThinSpanAt(y) : RowSpan{};
    const RowSpan bar = BarSpanAt(y);
    // The pixels near a segment are convex, so what lies between two of a row belongs to it.
    return ends == LineEnds::kRound ? Hull(bar, Hull(DiscSpanAt(from, y), DiscSpanAt(to, y))) : bar;
}

/// After k steps along the longer axis the line is k x short / long aside, rounded to the nearest pixel.
RowSpan LineShape::ThinSpanAt(int64_t y) const {
    const int64_t columns = std::abs(dx), rows = std::abs(dy);
    const int64_t row = std::abs(y - from.y);
    int64_t first = 0, end = 0; // steps to the side
    if (rows > columns) {
        if (row == rows) return {};
        first = static_cast<int64_t>(FloorDivide(WideInt{2} * row * columns + rows, WideInt{2} * rows));
        end = first + 1;
    } else if (rows == 0) {
        end = columns;
    } else {
        const auto stepsUpTo = [&](int64_t halfRows) {
            return static_cast<int64_t>(CeilDivide(WideInt{columns} * halfRows, WideInt{2} * rows));
        };
        first = std::max<int64_t>(stepsUpTo(2 * row - 1), 0);
        end = std::min(stepsUpTo(2 * row + 1), columns);
    }
    return dx < 0 ? RowSpan{from.x - end + 1, from.x - first + 1} : RowSpan{from.x + first, from.x + end};
}

/// The pixels at most half the width from the infinite line whose feet lie between the ends, which square ends push
/// out by half the width. Both distances are bounded after they were multiplied by twice the direction's length.
RowSpan LineShape::BarSpanAt(int64_t y) const {
    const int64_t down = y - from.y;
    const WideInt across = WideInt{2} * down * dx, along = WideInt{2} * down * dy;
    const WideInt aside = lengthTimesWidth, beyond = ends == LineEnds::kSquare ? lengthTimesWidth : 0;
    const RowSpan bar = Common(NumbersBetween(WideInt{2} * dy, across - aside, across + aside),
                               NumbersBetween(WideInt{2} * dx, -beyond - along, 2 * squaredLength + beyond - along));
    return {from.x + bar.left, from.x + bar.right};
}

RowSpan LineShape::DiscSpanAt(DrawPoint centre, int64_t y) const {
    const int64_t down = 2 * (y - centre.y);
    const WideInt room = WideInt{width} * width - WideInt{down} * down;
    if (room < 0) return {};
    const auto side = static_cast<int64_t>(SquareRoot(room)) / 2;
    return {centre.x - side, centre.x + side + 1};
}

} // namespace lmf
