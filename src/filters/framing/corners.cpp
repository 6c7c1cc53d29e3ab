// Corners: rounds off the picture's corners, as those of an old print.
// Corner size is the radius in pixels, at most half the smaller side. Edge size is the width of the soft dark edge
// along the rounded corners, 0 for none, and Edge density how dark it is; it fades out towards the straight sides. What
// lies outside takes the paper colour. With Alpha on the picture stays, and the second picture is cut to the rounded
// outline.
#include <cmath>
#include <cstring>

#include "engine/filter.h"
#include "image/core/alpha_mask.h"
#include "image/core/byte_pass.h"
#include "image/draw/coverage.h"
#include "image/geometry/reverse.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(370, "Corner size:", &P::FilterCornerSize, {1, 512}).In(Unit::Pixels).Help("Radius of the rounded corners."),
    Slider(371, "Edge size:", &P::FilterCornerEdge, {0, 20})
        .In(Unit::Pixels)
        .Help("Width of a soft dark edge along the rounded corners; 0 draws none."),
    Slider(372, "Edge density:", &P::FilterCornerDense, {1, 255})
        .In(Unit::Levels)
        .Help("Darkness of the edge along the rounded corners."),
    CheckBox(373, "Alpha", &P::FilterCornerAlpha)
        .Help("Keeps the picture and makes what lies outside the corners transparent."),
};

/// The rounded picture. Lengths are in pixels.
struct RoundedPicture {
    int32_t width, height;
    int64_t radius; ///< in subpixels
    double edge, density;

    RoundedPicture(const ReadView &picture, const FilterParameters &settings)
        : width(picture.width), height(picture.height),
          radius(std::min({settings.FilterCornerSize * kSubpixels, width * kSubpixels / 2, height * kSubpixels / 2})),
          edge(settings.FilterCornerEdge), density(settings.FilterCornerDense) {}

    RoundRectShape Outline() const { return {{0, 0, width * kSubpixels, height * kSubpixels}, 2 * radius, 2 * radius}; }
    /// Rows and columns at each side that a corner reaches.
    int32_t Corner() const { return static_cast<int32_t>((radius + kSubpixels - 1) / kSubpixels); }
    /// How dark the edge is in a pixel of the upper left corner, 0 to 255.
    uint8_t EdgeAt(int32_t x, int32_t y) const {
        const double reach = static_cast<double>(radius) / kSubpixels;
        const double across = reach - (x + 0.5), down = reach - (y + 0.5), distance = std::hypot(across, down);
        const double depth = std::max(reach - distance, 0.0) / edge;
        if (across <= 0 || down <= 0 || depth >= 1) return 0;
        // 1 in the middle of the corner, 0 where the straight sides begin.
        const double turn = 2 * across * down / (distance * distance);
        const double soft = (1 - depth) * (1 - depth) * (1 + 2 * depth);
        return static_cast<uint8_t>(density * soft * turn * turn + 0.5);
    }
};

/// Part of a row that a corner reaches: how much of each pixel is inside, and how dark the edge is there.
struct CornerPixels {
    int32_t y, x, count;
    const uint8_t *coverage, *edge;
};

/// Calls draw(CornerPixels) for both ends of each row that the corners reach. @return false without memory.
template <typename Draw>
bool ForEachCornerRow(const RoundedPicture &rounded, Draw draw) {
    const RoundRectShape outline = rounded.Outline();
    const int32_t left = rounded.Corner(), right = std::min(left, rounded.width - left);
    CoverageRow row(left);
    BlockArray<uint8_t> coverage(static_cast<uint64_t>(left) * 2), edge(static_cast<uint64_t>(left) * 2);
    if (!row || !coverage || !edge) return false;
    for (int32_t y = 0, mirror = rounded.height - 1; y < left && y <= mirror; y++, mirror--) {
        row.Draw(outline, y);
        std::fill_n(coverage.data, row.Left(), uint8_t{0});
        std::copy(row.Levels() + row.Left(), row.Levels() + row.Right(), coverage.data + row.Left());
        for (int32_t x = 0; x < left; x++) edge[x] = rounded.EdgeAt(x, y);
        ReversePixels(coverage.data + left, coverage.data, static_cast<size_t>(right), 1);
        ReversePixels(edge.data + left, edge.data, static_cast<size_t>(right), 1);
        for (int32_t line : {y, mirror}) {
            draw(CornerPixels{line, 0, left, coverage.data, edge.data});
            draw(CornerPixels{line, rounded.width - right, right, coverage.data + left, edge.data + left});
            if (line == mirror) break;
        }
    }
    return true;
}

/// @return how much of each pixel is inside; null without memory.
DibHandle CoverageOf(const RoundedPicture &rounded) {
    LockedDib coverage(DibCreateGrey(rounded.width, rounded.height));
    if (!coverage) return nullptr;
    const WriteView &to = coverage.View();
    for (int32_t y = 0; y < to.height; y++) std::memset(to.Row(y), 255, static_cast<size_t>(to.width));
    const auto draw = [&](const CornerPixels &corner) {
        std::copy_n(corner.coverage, corner.count, to.Row(corner.y) + corner.x);
    };
    return ForEachCornerRow(rounded, draw) ? coverage.Release() : nullptr;
}

/// The picture on the paper; null without memory.
DibHandle RoundOff(const ReadView &source, const RoundedPicture &rounded, Color paper) {
    BytePass pass(source);
    BlockArray<uint8_t> outside(static_cast<uint64_t>(rounded.Corner()));
    if (!pass || !outside) return nullptr;
    const WriteView &to = pass.To();
    for (int32_t y = 0; y < to.height; y++)
        std::memcpy(to.Row(y), pass.From().Row(y), static_cast<size_t>(to.width) * 3);
    const auto draw = [&](const CornerPixels &corner) {
        uint8_t *pixels = to.Row(corner.y) + static_cast<ptrdiff_t>(corner.x) * 3;
        for (int32_t i = 0; i < corner.count; i++) outside[i] = static_cast<uint8_t>(255 - corner.coverage[i]);
        TintRow(pixels, corner.edge, corner.count, 0);
        TintRow(pixels, outside.data, corner.count, paper);
    };
    return ForEachCornerRow(rounded, draw) ? pass.Finish() : nullptr;
}

DibHandle CornersKernel(const ReadView &source, FilterContext &context) {
    const RoundedPicture rounded(source, context);
    if (context.FilterCornerAlpha == 0) return RoundOff(source, rounded, context.paperColor);
    LockedDib coverage(CoverageOf(rounded));
    DibOwner result(DibClone(source));
    if (!coverage || !result) return nullptr;
    ReplaceSecond(context, AlphaFromCoverage(std::move(coverage), context.second));
    return result.Release();
}

} // namespace

extern constexpr Filter kCorners = MakeFilter<kPage>(CornersKernel);

} // namespace lmf
