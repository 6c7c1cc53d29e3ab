#include <cstring>

#include <gtest/gtest.h>

#include "image/core/dib_ops.h"
#include "overlays/text_layout.h"
#include "overlays/text_macros.h"
#include "support/reference.h"
#include "support/text_surface.h"

namespace lmf::testing {

/// Where the copies of the letters of each effect stand, shadow and highlight: the nine places row by row.
static const std::string kCopies[16][2] = {
    {"", ""},  {"0", ""}, {"2", ""},         {"6", ""},  {"8", ""},  {"012345678", ""}, {"", "0"},  {"", "2"},
    {"", "6"}, {"", "8"}, {"", "012345678"}, {"8", "0"}, {"6", "2"}, {"2", "6"},        {"0", "8"}, {"", ""}};

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
        const TextDrawing drawing = {font.font, {static_cast<Color>(level * 0x10101)}, mask.Surface()};
        EXPECT_GT(DrawTextPlain(drawing, text, &box, kFormats[c.FilterWatermarkPos]), 0);
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
    for (size_t i : {0, 1}) {
        TextCanvas mask(width, height);
        for (char place : kCopies[c.FilterWatermarkEffect][i])
            draw(mask, ((place - '0') % 3 - 1) * k, ((place - '0') / 3 - 1) * k, c.FilterWatermarkOpacity);
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

static LmfHandle LoadMark(void *owner, const char *path) {
    EXPECT_STREQ(path, "/proc/self/exe");
    const auto *picture = static_cast<const LockedDib *>(owner);
    return *picture ? DibClone(picture->View()) : nullptr;
}

TEST(Watermark, StampsThePictureThatTheHostLoads) {
    const LockedDib source = RandomPicture(31, 20, kModeTrueColor, 1);
    LockedDib marks[] = {RandomPicture(10, 7, kModeTrueColor, 2), RandomDepth(50, 5, 32, 3), LockedDib()};
    FilterContext context = ContextWith({{&P::FilterWatermarkXoff, 20}, {&P::FilterWatermarkYoff, 10}});
    context.loadPicture = LoadMark;
    std::strcpy(context.FilterWatermarkImagePath, "/proc/self/exe");
    context.FilterWatermarkImageUse = 1;
    constexpr int32_t kPlaces[2][5][2] = {{{6, 2}, {15, 2}, {6, 11}, {15, 11}, {10, 6}},
                                          {{6, 2}, {-25, 2}, {6, 13}, {-25, 13}, {-9, 7}}};
    for (int32_t i = 0; i < 10; i++) {
        context.FilterWatermarkPos = i / 2;
        context.ownerWindow = &marks[i % 2];
        const ReadView mark = marks[i % 2];
        const auto &[left, top] = kPlaces[i % 2][i / 2];
        ExpectPixels(RunKernel("Watermark", source, context), [&, x0 = left, y0 = top](int32_t x, int32_t y) {
            const Color below = DibGetPixel(source, x, y);
            if (x < x0 || y < y0 || x >= x0 + mark.width || y >= y0 + mark.height) return below;
            const uint32_t pixel = DibGetPixel(mark, x - x0, y - y0);
            return MixBytes(below, pixel & 0xFFFFFF, mark.bits == 32 ? pixel >> 24 : 255);
        });
    }
    // Without the file, the wish, the loader or the picture the text is printed.
    const LockedDib printed = PrintedText(source, context, nullptr);
    for (int32_t missing = 0; missing < 4; missing++) {
        FilterContext poor = context;
        if (missing == 0) std::strcpy(poor.FilterWatermarkImagePath, "/no/such/file");
        if (missing == 1) poor.FilterWatermarkImageUse = 0;
        if (missing == 2) poor.loadPicture = nullptr;
        if (missing == 3) poor.ownerWindow = &marks[2];
        EXPECT_TRUE(SamePicture(RunKernel("Watermark", source, poor), printed)) << missing;
    }
}

} // namespace lmf::testing
