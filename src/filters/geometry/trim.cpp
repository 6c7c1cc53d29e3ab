// Trim: takes away borders. "By color" drops the rows or columns of a side for as long as all their pixels are like
// that side's first corner, within Tolerance in every channel; "By size" drops Size pixels of each side, "By percent"
// that part of the axis. Only the checked sides are touched, in the order north, east, south, west, each over what the
// sides before it left. At least one pixel stays.
#include <cstdlib>

#include "engine/filter.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Combo(993, "Trim mode:", &P::FilterTrimMode, "By color;By size;By percent")
        .Help("What is taken away: plain borders, a number of pixels, or a part of each side."),
    CheckBox(994, "North", &P::FilterTrimNorth).Help("Trims the upper edge."),
    CheckBox(995, "East", &P::FilterTrimEast).Help("Trims the right edge."),
    CheckBox(996, "South", &P::FilterTrimSouth).Help("Trims the lower edge."),
    CheckBox(997, "West", &P::FilterTrimWest).Help("Trims the left edge."),
    Slider(990, "Tolerance:", &P::FilterTrimTol, {0, 255})
        .In(Unit::Levels)
        .Help("By color: how much a border may differ from its corner and still count as plain."),
    Slider(991, "Size:", &P::FilterTrimSize, {1, 1024}).In(Unit::Pixels).Help("By size: how much each edge loses."),
    Slider(992, "Percent:", &P::FilterTrimPercent, {1, 50})
        .In(Unit::Percent)
        .Help("By percent: how much of the width or height each edge loses."),
};

enum TrimMode : int32_t { kByColor = 0, kBySize = 1, kByPercent = 2 };

/// What is left of the picture; right and bottom are exclusive.
struct Rest {
    int32_t left, top, right, bottom;
};

int32_t ChannelDistance(uint32_t a, uint32_t b) {
    const int32_t red = std::abs(RedOf(a) - RedOf(b)), green = std::abs(GreenOf(a) - GreenOf(b));
    return std::max(std::max(red, green), std::abs(BlueOf(a) - BlueOf(b)));
}

/// Are all pixels of the rectangle within the tolerance of `corner`?
bool IsPlain(const ReadView &image, const Rest &part, uint32_t corner, int32_t tolerance) {
    for (int32_t y = part.top; y < part.bottom; y++) {
        for (int32_t x = part.left; x < part.right; x++) {
            if (ChannelDistance(DibGetPixel(image, x, y), corner) > tolerance) return false;
        }
    }
    return true;
}

/// How many lines of a side go; `lineAt(k)` is the k-th line from that side and `most` what the side may lose.
template <typename LineAt>
int32_t LinesToTrim(const FilterContext &context, const ReadView &image, int32_t axis, int32_t most, LineAt lineAt) {
    if (context.FilterTrimMode == kBySize) return std::min(context.FilterTrimSize, most);
    if (context.FilterTrimMode == kByPercent)
        return static_cast<int32_t>(std::min<int64_t>(int64_t{axis} * context.FilterTrimPercent / 100, most));
    const Rest first = lineAt(0);
    const uint32_t corner = DibGetPixel(image, first.left, first.top);
    int32_t lines = 0;
    while (lines < most && IsPlain(image, lineAt(lines), corner, context.FilterTrimTol)) lines++;
    return lines;
}

DibHandle TrimKernel(const ReadView &source, FilterContext &context) {
    const int32_t width = source.width, height = source.height;
    Rest rest{0, 0, width, height};
    const auto lines = [&](int32_t axis, int32_t most, auto lineAt) {
        return LinesToTrim(context, source, axis, most, lineAt);
    };
    if (context.FilterTrimNorth)
        rest.top += lines(height, height - 1, [&](int32_t k) {
            return Rest{rest.left, rest.top + k, rest.right, rest.top + k + 1};
        });
    if (context.FilterTrimEast)
        rest.right -= lines(width, width - 1, [&](int32_t k) {
            return Rest{rest.right - k - 1, rest.top, rest.right - k, rest.bottom};
        });
    if (context.FilterTrimSouth)
        rest.bottom -= lines(height, rest.bottom - rest.top - 1, [&](int32_t k) {
            return Rest{rest.left, rest.bottom - k - 1, rest.right, rest.bottom - k};
        });
    if (context.FilterTrimWest)
        rest.left += lines(width, rest.right - rest.left - 1, [&](int32_t k) {
            return Rest{rest.left + k, rest.top, rest.left + k + 1, rest.bottom};
        });
    return DibCropRect(source, rest.left, rest.top, rest.right, rest.bottom);
}

} // namespace

extern constexpr Filter kTrim = MakeFilter<kPage>(TrimKernel);

} // namespace lmf
