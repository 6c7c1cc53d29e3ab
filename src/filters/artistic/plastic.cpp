// Plastic: the shine of a curved plastic cover, a bright dome of light that fades upwards over the picture.
// Start is the height that the light reaches, in percent of the picture's height, and Size the width of the dome in
// percent of its width. Brightness is that of the light at its edge, Edge the sharpness of that edge, and Border a
// margin that stays free of the light, in pixels.
#include <cmath>
#include <cstring>
#include <numbers>

#include "engine/filter.h"
#include "image/core/rows.h"
#include "image/draw/shapes.h"
#include "image/scale/resample.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(660, "Start:", &P::FilterPlasticStart, {20, 80})
        .In(Unit::Percent)
        .Help("Lets the light reach down this far, in percent of the picture's height."),
    Slider(661, "Size:", &P::FilterPlasticSize, {150, 800})
        .In(Unit::Percent)
        .Help("Makes the dome of light wider and flatter, in percent of the picture's width."),
    Slider(662, "Brightness:", &P::FilterPlasticBrightness, {96, 240})
        .In(Unit::Levels)
        .Help("Makes the light brighter at its edge."),
    Slider(663, "Edge:", &P::FilterPlasticEdge, {10, 40}).Help("Makes the edge of the light sharper."),
    Slider(664, "Border:", &P::FilterPlasticBorder, {0, 16})
        .In(Unit::Pixels)
        .Help("Keeps a margin of this width free of the light."),
};

constexpr int32_t kScale = 4; ///< the light is drawn so many times as large

/// The light as it is drawn: circles of one size, each in its tone and a row above the one before, which it covers but
/// for a crescent. Down every column of the drawing therefore follow the tones of all circles, the last one's at the
/// top, then black. Where the circles begin lower, by the column's inset, the column has lost so many tones at its top.
struct Dome {
    int32_t width, height;
    int32_t border;             ///< without light
    BlockArray<uint8_t> tones;  ///< down a column without an inset, and as far below it as the largest inset reaches
    BlockArray<int32_t> insets; ///< of each column; dark ones have `darkInset`
    int32_t darkInset = 0;      ///< beyond all others

    Dome(const ReadView &picture, const FilterContext &context)
        : width(kScale * picture.width), height(kScale * picture.height), border(kScale * context.FilterPlasticBorder),
          tones(static_cast<uint64_t>(height) + static_cast<uint64_t>(width)), insets(static_cast<uint64_t>(width)) {
        if (!*this) return;
        FillTones(context);
        FillInsets(int64_t{width} * context.FilterPlasticSize / 100);
    }
    explicit operator bool() const { return tones && insets; }

    /// Writes row y of a drawing that has one column for each inset.
    void FillRow(int32_t y, uint8_t *row) const {
        const bool isDark = y < border || y >= height - border;
        const auto lit = static_cast<size_t>(darkInset);
        if (isDark)
            std::memset(row, 0, lit);
        else
            std::memcpy(row, tones.data + y, lit);
        row[lit] = 0;
    }

private:
    void FillTones(const FilterContext &context) {
        const auto count = static_cast<int32_t>(int64_t{height} * context.FilterPlasticStart / 100);
        const int32_t rise = std::max(count / context.FilterPlasticEdge, 3),
                      brightness = context.FilterPlasticBrightness;
        for (int32_t i = 0; i < count; i++) {
            uint8_t &tone = tones[count - 1 - i];
            if (i < rise) {
                const float degrees = static_cast<float>(i) / static_cast<float>(rise) * 90.0f;
                tone = static_cast<uint8_t>(std::sin(degrees * std::numbers::pi / 180) * brightness);
            } else {
                const int64_t fallen = int64_t{i - rise} * brightness / (count - rise);
                tone = static_cast<uint8_t>(brightness - fallen - 1);
            }
        }
    }
    void FillInsets(int64_t diameter) {
        const int64_t middle = width / 2, half = diameter / 2;
        // A column of a circle is a row of one that lies on its side.
        const EllipseShape circle({0, middle - half, diameter, middle + half});
        for (int32_t x = 0; x < width; x++) {
            const RowSpan span = circle.SpanAt(x);
            const bool isDark = x < border || x >= width - border || span.IsEmpty();
            insets[x] = isDark ? -1 : static_cast<int32_t>(span.left);
            darkInset = std::max(darkInset, insets[x] + 1);
        }
        std::replace(insets.data, insets.data + width, -1, darkInset);
    }
};

DibHandle PlasticKernel(const ReadView &source, FilterContext &context) {
    const int32_t width = source.width, height = source.height;
    const Dome dome(source, context);
    LockedDib result(DibCreate(width, height, nullptr, 24));
    RgbRows rows(source);
    if (!dome || !result || !rows) return nullptr;
    // Columns of the same inset are alike, so each is reduced once. Only then the columns take their places, and the
    // rows are reduced.
    const int32_t columns = dome.darkInset + 1, drawnWidth = dome.width;
    BlockArray<uint8_t> low(static_cast<uint64_t>(columns) * static_cast<uint64_t>(height));
    if (!low) return nullptr;
    const auto lowRow = [&](int32_t y) { return low.data + int64_t{columns} * y; };
    const auto drawColumns = [&](int32_t y, uint8_t *row) { dome.FillRow(y, row); };
    const auto keepRow = [&](int32_t y, const uint8_t *row) {
        std::memcpy(lowRow(y), row, static_cast<size_t>(columns));
    };
    const auto placeColumns = [&](int32_t y, uint8_t *row) {
        const uint8_t *tones = lowRow(y);
        const int32_t *insets = dome.insets.data;
        for (int32_t x = 0, end = drawnWidth; x < end; x++) row[x] = tones[insets[x]];
    };
    const auto lightRow = [&](int32_t y, const uint8_t *light) {
        TintRow(result.View().Row(y), rows.MemoryRow(height - 1 - y), light, width, 0xFFFFFF);
    };
    const bool isLit = ScaleRows({columns, dome.height, 8}, drawColumns, columns, height, kWindowLanczos, keepRow) &&
                       ScaleRows({drawnWidth, height, 8}, placeColumns, width, height, kWindowLanczos, lightRow);
    return isLit ? result.Release() : nullptr;
}

} // namespace

extern constexpr Filter kPlastic = MakeFilter<kPage>(PlasticKernel);

} // namespace lmf
