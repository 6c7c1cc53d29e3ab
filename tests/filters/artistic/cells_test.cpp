// Filters that cut the picture into cells or lay a pattern over it: each against a slow reading of its rule.
#include <cmath>
#include <cstdlib>

#include "image/color/tone_table.h"
#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/resample.h"
#include "image/texture/textures.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

/// The mean colour of the pixels of a cell that lie in the picture.
Color MeanOf(const ReadView &from, int32_t left, int32_t top, int32_t side) {
    uint32_t red = 0, green = 0, blue = 0, count = 0;
    for (int32_t y = std::max(top, 0); y < std::min(top + side, from.height); y++) {
        for (int32_t x = std::max(left, 0); x < std::min(left + side, from.width); x++, count++) {
            const Color pixel = DibGetPixel(from, x, y);
            red += RedOf(pixel);
            green += GreenOf(pixel);
            blue += BlueOf(pixel);
        }
    }
    return PackColor(red / count, green / count, blue / count);
}

/// A picture like another of cells that are each filled by fill(picture, left, top).
template <typename Fill>
LockedDib ByCells(const ReadView &like, int32_t left, int32_t top, int32_t side, Fill fill) {
    LockedDib picture(DibCreateLike(like, like.width, like.height));
    for (int32_t y = top; y < like.height; y += side)
        for (int32_t x = left; x < like.width; x += side) fill(picture.View(), x, y);
    return picture;
}

LockedDib Obscured(const ReadView &from, const FilterContext &context) {
    const int32_t level = context.FilterObscureLevel, wanted = context.FilterObscureRule;
    LockedDib picture = ByCells(from, 0, 0, level, [&](const WriteView &to, int32_t left, int32_t top) {
        DibFillRect(to, left, top, level, level, MeanOf(from, left, top, level));
    });
    const int32_t rule = wanted == 0 ? 0 : std::max(std::min(wanted, level / 2), 1);
    const auto isRuled = [&](int32_t at) { return (at + rule / 2) % level < rule; };
    ForEachPixel(from, [&](int32_t x, int32_t y) {
        if (isRuled(x) || isRuled(y)) DibSetPixel(picture.View(), x, y, context.paperColor);
    });
    return picture;
}

/// Where a pixel of a block of an even size looks: twice as far from the block's middle.
int32_t Bent(int32_t at, int32_t size) {
    const int32_t even = size + size % 2, base = (at + even / 2) / even * even;
    return base + 2 * (at - base);
}

LockedDib Bricked(const ReadView &from, const FilterContext &context) {
    const int32_t size = context.FilterGlassBlockX;
    return PictureLike(from, [&](int32_t x, int32_t y) {
        const int32_t column = Bent(x, size), row = std::min(Bent(y, size), from.height - 1);
        return DibGetPixel(from, column < from.width ? column : x, row);
    });
}

/// Is a pixel of the large drawing inside the shape of tile i? (X, Y) is twice its distance from the tile's centre.
bool IsInk(const FilterContext &context, int32_t i, int32_t X, int32_t Y) {
    const int32_t s = context.FilterHalftoneSize, k = s - 1 - i;
    const auto sizeOf = [&](float full, float rounding) {
        return 2 * static_cast<int32_t>(full * static_cast<float>(k) / static_cast<float>(s) + rounding);
    };
    const auto width = static_cast<float>(4 * s);
    const int32_t r = sizeOf(width / 2 * 1.414f, 0), h = sizeOf(width / 2, 0.5f), d = sizeOf(width, 0.5f) - std::abs(Y);
    const int32_t x = std::abs(X), y = std::abs(Y);
    const bool shapes[] = {X * X + Y * Y <= r * r && r > 0, y < h, x < h, x < h && y < h,
                           X >= -d && X < d}; // its left edges belong to the last
    return shapes[context.FilterHalftoneScreen];
}

uint32_t ScreenTone(const FilterContext &context, int32_t i, int32_t x, int32_t y) {
    const int32_t middle = 4 * context.FilterHalftoneSize;
    int32_t rows = 0;
    for (int32_t v = 0; v < 4; v++) {
        int32_t row = 0;
        for (int32_t u = 0; u < 4; u++)
            row += IsInk(context, i, 8 * x + 2 * u + 1 - middle, 8 * y + 2 * v + 1 - middle) ? 0 : 255;
        rows += row / 4;
    }
    return static_cast<uint32_t>(WeightedGrey(rows / 4, rows / 4, rows / 4));
}

LockedDib Screened(const ReadView &source, const FilterContext &context) {
    const LockedDib grey(DibToGrey(source));
    const int32_t s = context.FilterHalftoneSize;
    return ByCells(grey, 0, 0, s, [&](const WriteView &to, int32_t left, int32_t top) {
        const auto tile = static_cast<int32_t>(RedOf(MeanOf(grey, left, top, s))) * s >> 8;
        for (int32_t y = 0; y < s; y++)
            for (int32_t x = 0; x < s; x++) DibSetPixel(to, left + x, top + y, ScreenTone(context, tile, x, y));
    });
}

LockedDib Lamps(const ReadView &from, const FilterContext &context) {
    const int32_t size = context.FilterBigscreenSize, q = 2 * size / 4;
    LockedDib large(DibCreate(2 * size, 2 * size, nullptr, 24));
    ForEachPixel(large, [&](int32_t x, int32_t y) {
        const int32_t X = 2 * x + 1 - 2 * size, Y = 2 * y + 1 - 2 * size;
        for (int32_t i = 0; i < size; i++) {
            const int32_t diameter = 2 * (size - i + q);
            const auto grey = static_cast<uint32_t>((i + 1.0) / size * 255);
            if (X * X + Y * Y <= diameter * diameter) DibSetPixel(large.View(), x, y, grey * 0x10101);
        }
    });
    const LockedDib mask(DibScalePercent(large, 50, 50, 0));
    const ReadView lamp = mask;
    return ByCells(from, -(from.width % size / 2), -(from.height % size / 2), size,
                   [&](const WriteView &to, int32_t left, int32_t top) {
                       const Color mean = MeanOf(from, left, top, size);
                       ForEachPixel(lamp, [&](int32_t x, int32_t y) {
                           const uint32_t light = DibGetPixel(lamp, x, y) & 255;
                           DibSetPixel(to, left + x, top + y, MixBytes(context.paperColor, mean, light));
                       });
                   });
}

/// Adds offset(x, y) to all channels.
template <typename Offset>
LockedDib Raised(const ReadView &source, const FilterContext &context, Offset offset) {
    return ByChannel([&](auto read, const FilterContext &, int32_t x, int32_t y) {
        return std::clamp(read(x, y) + offset(x, y), 0, 255);
    })(source, context);
}

LockedDib Textured(const ReadView &source, const FilterContext &context) {
    const LockedDib textures(CanvasTextures());
    const ToneTable tones = BuildContrastTable(context.FilterTextureCont, context.FilterTextureBri);
    return Raised(source, context, [&](int32_t x, int32_t y) {
        return tones.at[DibGetPixel(textures, x % 256, y % 256 + 256 * context.FilterTextureMode)] - 128;
    });
}

LockedDib Puzzled(const ReadView &source, const FilterContext &context) {
    const LockedDib relief(JigsawRelief());
    const LockedDib scaled(DibScalePercent(relief, context.FilterJigsawSize, context.FilterJigsawSize, 0));
    const ReadView tile = scaled;
    return Raised(source, context, [&](int32_t x, int32_t y) {
        return (static_cast<int32_t>(DibGetPixel(tile, x % tile.width, y % tile.height)) - 127) *
               context.FilterJigsawDepth / 100;
    });
}

const std::vector<Kind> kColors = {Kind::Color, Kind::Alpha};
const std::vector<Kind> kColorsAndGrey = {Kind::Color, Kind::Alpha, Kind::Grey};

} // namespace

TEST(Cells, FastPathsAreTheSlowRules) {
    ExpectDefinition("Obscure", {kColorsAndGrey}, Obscured);
    ExpectDefinition("Glass Block", {kColorsAndGrey}, Bricked);
    ExpectDefinition("Big Screen", {kColors}, Lamps);
    for (int32_t screen = 0; screen < 5; screen++)
        ExpectDefinition("Halftone", {.kinds = kColors, .fixed = {{&P::FilterHalftoneScreen, screen}}}, Screened);
    const std::vector<Size> beyondTheTile = {{600, 3}, {2, 300}, {1, 1}};
    ExpectDefinition("Canvas", {.kinds = kColors, .sizes = beyondTheTile}, Textured);
    ExpectDefinition("Jigsaw", {.kinds = kColors, .sizes = beyondTheTile}, Puzzled);
}

TEST(Cells, ObscureDrawsItsGridOnThePicturesEdges) {
    FilterContext context = ContextWith({{&P::FilterObscureLevel, 4}, {&P::FilterObscureRule, 64}});
    context.paperColor = 0x0000FF;
    const LockedDib plain(DibCreateSolid(9, 5, 0x808080));
    // Two pixels wide, as half a cell is: one on each side of every border.
    ExpectPixels(RunKernel("Obscure", plain, context), [](int32_t x, int32_t y) -> Color {
        return x % 4 == 0 || x % 4 == 3 || y % 4 == 0 || y % 4 == 3 ? 0x0000FF : 0x808080;
    });
}

TEST(Cells, GlassBlockClampsRowsAndLeavesColumns) {
    Pixels pixels(12 * 6);
    for (uint32_t i = 0; i < pixels.size(); i++) pixels[i] = i;
    const LockedDib source = MakePicture(12, 6, 24, pixels);
    // Blocks of 8 from an odd 7: columns 0 2 4 6 twice, then 8 10 and those that have nowhere to look.
    static constexpr uint32_t kColumns[] = {0, 2, 4, 6, 0, 2, 4, 6, 8, 10, 10, 11}, kRows[] = {0, 2, 4, 5, 0, 2};
    ExpectPixels(RunKernel("Glass Block", source, {{&P::FilterGlassBlockX, 7}}),
                 [](int32_t x, int32_t y) { return kRows[y] * 12 + kColumns[x]; });
}

TEST(Cells, ScalingAPartLeavesResizeAsItWasRun) {
    const LockedDib source(DibCreateSolid(20, 20, 0x406080));
    for (const auto &[filter, percent] : {std::pair{"Jigsaw", 40}, {"Big Screen", 50}}) {
        FilterContext context = ContextWith({{&P::FilterJigsawSize, 40},
                                             {&P::FilterResizeInterpolate, 0},
                                             {&P::FilterResizeConstant, 0},
                                             {&P::FilterResizeFilter, 3},
                                             {&P::FilterResizeByDim, 1},
                                             {&P::FilterResizeWidth, 9}});
        const LockedDib result = RunKernel(filter, source, context);
        EXPECT_TRUE(SamePicture(result, RunKernel(filter, source, {{&P::FilterJigsawSize, 40}}))) << filter;
        EXPECT_TRUE(context.FilterResizeHorz == percent && context.FilterResizeVert == percent) << filter;
        EXPECT_TRUE(context.FilterResizeInterpolate == 1 && context.FilterResizeConstant == 1) << filter;
        EXPECT_TRUE(context.FilterResizeFilter == 0 && context.FilterResizeByDim == 1) << filter;
        EXPECT_EQ(context.FilterResizeWidth, 9) << filter;
    }
}

} // namespace lmf::testing
