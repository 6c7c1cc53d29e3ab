#include <cstring>

#include <gtest/gtest.h>

#include "image/color/dither.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(Caption, TheBarIsAsHighAsItsLines) {
    const struct {
        const char *text;
        int32_t lines;
        std::vector<Setting> settings;
    } cases[] = {
        {"", 1, {}},
        {"one\rtwo\r\nthree", 3, {}},
        {"one\rtwo", 1, {{&P::FilterCaptionSingleline, 1}}},
        {"%H%V %%%%", 2, {}}, // 120 and 5 fit, but not the signs
        {"\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D \xD0\x96\xD0\x96\xD0\x96", 2, {}},
        {"a\rb\rc\rd", 4, {{&P::FilterCaptionLinespace, 90}}}, // 3.7 lines
        {"a\rb\rc\rd", 3, {{&P::FilterCaptionLinespace, 60}}}, // 2.8 lines
    };
    for (const auto &[text, lines, settings] : cases) {
        FilterContext context = ContextWith(settings);
        context.FilterCaptionFontsize = 40;
        std::strcpy(context.FilterCaptionString, text);
        const LockedDib result = RunKernel("Caption", RandomPicture(120, 5, kModeTrueColor, 1), context);
        ASSERT_TRUE(result);
        EXPECT_EQ(result.View().height, 5 + 2 * 3 + 40 * lines) << text;
    }
}

TEST(Caption, TheBarComesBackInTheColorsOfThePicture) {
    for (Kind kind : {Kind::Color, Kind::Alpha, Kind::Grey, Kind::Palette, Kind::Mono}) {
        const LockedDib source = RandomKind(kind, 90, 7, 3), wide(DibCreate(90, 7, nullptr, 24));
        const uint32_t bits = source.View().bits;
        std::vector<Setting> settings = {{&P::FilterCaptionFramesize, 4}, {&P::FilterCaptionFramecolor, 0x4060F0}};
        const LockedDib result = RunKernel("Caption", source, settings);
        // Letters are smooth in true colour and in grey alone.
        settings.push_back({&P::FilterCaptionAntialias, kind < Kind::Palette});
        const LockedDib bar = RunKernel("Caption", wide, settings),
                        reduced(bits > 8 ? DibClone(bar) : RemapNearest(bar, PaletteOf(source), bits));
        EXPECT_TRUE(DibGetPixel(bar, 3, 10) == 0x4060F0 && DibGetPixel(bar, 4, 11) == 0xFFFFFF);
        EXPECT_EQ(PaletteOf(result).At(1), PaletteOf(source).At(1));
        ExpectPixels(result, [&](int32_t x, int32_t y) { return DibGetPixel(y < 7 ? source : reduced, x, y); });
    }
}

} // namespace lmf::testing
