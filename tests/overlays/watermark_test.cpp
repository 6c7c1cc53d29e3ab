#include <array>
#include <cstring>

#include <gtest/gtest.h>

#include "image/core/dib_ops.h"
#include "overlays/text_layout.h"
#include "overlays/text_macros.h"
#include "support/reference.h"
#include "support/text_surface.h"

namespace lmf::testing {

/// Where the copies of the letters stand, shadow first; 2 stands for all nine places.
static constexpr std::array<std::array<int32_t, 4>, 16> kOffsets = {{{0, 0, 0, 0},
                                                                     {-1, -1, 0, 0},
                                                                     {1, -1, 0, 0},
                                                                     {-1, 1, 0, 0},
                                                                     {1, 1, 0, 0},
                                                                     {2, 2, 0, 0},
                                                                     {0, 0, -1, -1},
                                                                     {0, 0, 1, -1},
                                                                     {0, 0, -1, 1},
                                                                     {0, 0, 1, 1},
                                                                     {0, 0, 2, 2},
                                                                     {1, 1, -1, -1},
                                                                     {-1, 1, 1, -1},
                                                                     {1, -1, -1, 1},
                                                                     {-1, -1, 1, 1},
                                                                     {0, 0, 0, 0}}};

/// The filter with masks of the whole picture's size.
static LockedDib PrintedText(const ReadView &source, const FilterContext &c, const WriteView *second) {
    static constexpr uint32_t kFormats[] = {0x8820, 0x8822, 0x8828, 0x882A, 0x8825};
    const int32_t width = source.width, height = source.height;
    const int32_t k = c.FilterWatermarkFontsize / c.FilterWatermarkKeyFactor + 1;
    const int32_t left = width * c.FilterWatermarkXoff / 100, top = height * c.FilterWatermarkYoff / 100;
    char text[260];
    TextMacroExpand(text, c.FilterWatermarkString, sizeof text, width, height);
    const FontOwner font({c.FilterWatermarkFontname, c.FilterWatermarkFontsize, c.FilterWatermarkBold != 0 ? 700 : 400,
                          c.FilterWatermarkItal != 0});
    const auto draw = [&](TextCanvas &mask, int32_t x, int32_t y, int32_t level) {
        TextRect box = {left + x, top + y, width - 1 - left + x, height - 1 - top + y};
        EXPECT_GT(DrawTextPlain({font.font, {static_cast<Color>(level * 0x10101)}, mask.Surface()}, text, &box,
                                kFormats[c.FilterWatermarkPos]),
                  0);
    };
    LockedDib result(DibToRgb(source));
    const auto lay = [&](const TextCanvas &mask, int32_t color) {
        ForEachPixel(result, [&](int32_t x, int32_t y) {
            const uint32_t weight = *mask.At(x, y);
            DibSetPixel(result.View(), x, y, MixBytes(DibGetPixel(result, x, y), static_cast<Color>(color), weight));
            if (second != nullptr)
                DibSetPixel(*second, x, y, std::max<uint32_t>(DibGetPixel(*second, x, y) & 255, weight));
        });
    };
    const auto &offsets = kOffsets[c.FilterWatermarkEffect];
    for (size_t i : {0, 1}) {
        const int32_t dx = offsets[2 * i], dy = offsets[2 * i + 1];
        if (dx == 0) continue;
        TextCanvas mask(width, height);
        if (dx == 2) {
            for (int32_t y : {-k, 0, k})
                for (int32_t x : {-k, 0, k}) draw(mask, x, y, c.FilterWatermarkOpacity);
        } else {
            draw(mask, dx * k, dy * k, c.FilterWatermarkOpacity);
        }
        draw(mask, 0, 0, 0);
        lay(mask, i == 0 ? c.FilterWatermarkShadowColor : c.FilterWatermarkHighlightColor);
    }
    TextCanvas mask(width, height);
    draw(mask, 0, 0, c.FilterWatermarkOpacity);
    lay(mask, static_cast<int32_t>(c.paperColor));
    return result;
}

TEST(Watermark, MatchesItsDefinition) {
    for (int32_t factor : {1, 48})
        ExpectDefinition(
            "Watermark",
            {.kinds = {Kind::Color, Kind::Alpha},
             .fixed = {{&P::FilterWatermarkKeyFactor, factor}},
             .sizes = {{1, 1}, {40, 9}, {300, 60}, {90, 200}}},
            [](const ReadView &source, const FilterContext &c) { return PrintedText(source, c, nullptr); });
}

TEST(Watermark, OpensTheSecondPicture) {
    const LockedDib source = RandomPicture(150, 60, kModeTrueColor, 1);
    for (const auto &[width, height] : {std::pair{150, 60}, {40, 500}, {400, 30}}) {
        FilterContext context = ContextWith({{&P::FilterWatermarkEffect, 11}});
        const LockedDib second = RandomPicture(width, height, kModePalette, 2), expected(DibClone(second));
        context.second = second.owner.handle;
        const LockedDib result = RunKernel("Watermark", source, context);
        EXPECT_TRUE(SamePicture(result, PrintedText(source, context, &expected.View())));
        const LockedDib made(std::exchange(context.secondResult, nullptr));
        EXPECT_TRUE(SamePicture(made, expected));
    }
}

/// What the loader gives and what it was asked for.
static struct {
    const LockedDib *picture;
    std::string path;
    void *owner;
} mark;

static LmfHandle LoadMark(void *owner, const char *path) {
    mark.path = path;
    mark.owner = owner;
    return mark.picture != nullptr ? DibClone(mark.picture->View()) : nullptr;
}

TEST(Watermark, StampsThePictureThatTheHostLoads) {
    const LockedDib source = RandomPicture(31, 20, kModeTrueColor, 1), plain = RandomPicture(10, 7, kModeTrueColor, 2),
                    wide = RandomDepth(50, 5, 32, 3);
    FilterContext context = ContextWith({{&P::FilterWatermarkXoff, 20}, {&P::FilterWatermarkYoff, 10}});
    context.loadPicture = LoadMark;
    context.ownerWindow = &context;
    std::strcpy(context.FilterWatermarkImagePath, "/proc/self/exe");
    context.FilterWatermarkImageUse = 1;
    const std::array<int32_t, 4> places[] = {
        {6, 2, 6, 2}, {15, 2, -25, 2}, {6, 11, 6, 13}, {15, 11, -25, 13}, {10, 6, -9, 7}};
    for (int32_t position = 0; position < 5; position++) {
        context.FilterWatermarkPos = position;
        for (const LockedDib *picture : {&plain, &wide}) {
            mark.picture = picture;
            const ReadView from = *picture;
            const auto &place = places[position];
            const int32_t left = place[from.bits == 32 ? 2 : 0], top = place[from.bits == 32 ? 3 : 1];
            ExpectPixels(RunKernel("Watermark", source, context), [&](int32_t x, int32_t y) {
                const Color below = DibGetPixel(source, x, y);
                if (x < left || y < top || x >= left + from.width || y >= top + from.height) return below;
                const uint32_t pixel = DibGetPixel(from, x - left, y - top);
                return MixBytes(below, pixel & 0xFFFFFF, from.bits == 32 ? pixel >> 24 : 255);
            });
        }
    }
    EXPECT_TRUE(mark.path == "/proc/self/exe" && mark.owner == &context);

    // Without the file, the wish, the picture or the loader the text is printed.
    const LockedDib printed = PrintedText(source, context, nullptr);
    for (int32_t missing = 0; missing < 4; missing++) {
        FilterContext poor = context;
        if (missing == 0) std::strcpy(poor.FilterWatermarkImagePath, "/no/such/file");
        if (missing == 1) poor.FilterWatermarkImageUse = 0;
        if (missing == 2) poor.loadPicture = nullptr;
        mark.picture = missing == 3 ? nullptr : &plain;
        EXPECT_TRUE(SamePicture(RunKernel("Watermark", source, poor), printed)) << missing;
    }
}

} // namespace lmf::testing
