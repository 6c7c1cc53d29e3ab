#include "platform/text.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "host/lmf_program.h"
#include "support/shared_folder.h"
#include "support/text_surface.h"

namespace lmf::testing {

static constexpr TextInk kWhite = {0xFFFFFF};
static constexpr char32_t kMixed[] =
    U"Mix: \u05E9\u05DC\u05D5\u05DD, \u0395\u03BB \u0416 12 \u65E5\u672C e\u0301 \U0001F600";

static TextCanvas Drawn(const FontRequest &request, const TextRun &run, const TextInk &ink = kWhite) {
    TextCanvas canvas(700, 240);
    const FontOwner font(request);
    EXPECT_TRUE(font);
    EXPECT_TRUE(font && DrawRun(font.font, run, 20, 20, ink, canvas.Surface(), canvas.All()));
    return canvas;
}

static int32_t Width(const FontRequest &request, std::u32string_view run) {
    const FontOwner font(request);
    EXPECT_TRUE(font);
    return font ? MeasureRun(font.font, run) : -1;
}

TEST(Text, HasTheMetricsOfTheFaceThatWasAskedFor) {
    // Ascent 1854, descent 434 in an em of 2048: at a height of 572 the em is 512 and the baseline in row 463.5.
    const FontRequest arial = {"Arial", 572};
    EXPECT_EQ(Width(arial, U"A"), 342);
    EXPECT_EQ(Width(arial, U"i"), 114);
    EXPECT_EQ(Width(arial, U"Hi "), 370 + 114 + 142);
    EXPECT_EQ(Width({"Courier New", 100}, U"iW"), 2 * Width({"Courier New", 100}, U"."));
    EXPECT_GT(Width({"Arial", 100, 700}, U"text"), Width({"Arial", 100}, U"text"));
    EXPECT_NE(Drawn({"Arial", 100, 400, true}, {U"text"}), Drawn({"Arial", 100}, {U"text"}));
    EXPECT_GT(Width({"A face that nobody has", 100}, U"text"), 0);

    const TextRect box = InkBox(Drawn({"Arial", 143}, {U"H"})); // an em of 128: 88 high, from column 10 to 82
    EXPECT_NEAR(box.left, 20 + 10, 1);
    EXPECT_NEAR(box.right, 20 + 82, 1);
    EXPECT_NEAR(box.top, 20 + 116 - 88, 1);
    EXPECT_NEAR(box.bottom, 20 + 116, 1);
}

TEST(Text, TheHeightIsWhatWasAskedFor) {
    for (int32_t height : {-7, 0, 1, 2, 9, 16, 144, 288, 5000, 70000, 2000000, INT32_MAX}) {
        const FontOwner font({"Arial", height});
        ASSERT_TRUE(font) << height;
        EXPECT_EQ(FontHeight(font.font), std::max(height, 1));
        EXPECT_GE(MeasureRun(font.font, U"text"), height > 2 ? 1 : 0);
        TextCanvas canvas(20, 20);
        EXPECT_TRUE(DrawRun(font.font, {kMixed}, -5, -5, kWhite, canvas.Surface(), canvas.All()));
        EXPECT_TRUE(DrawRun(font.font, {kMixed}, -5, -5, {0, INT32_MAX}, canvas.Surface(), canvas.All()));
    }
}

TEST(Text, ARunIsItsLettersAtWholePixels) {
    for (bool antialias : {true, false}) {
        const FontRequest request = {"Arial", 31, 400, false, antialias};
        const FontOwner font(request);
        ASSERT_TRUE(font);
        TextCanvas letters(700, 240);
        const auto draw = [&](std::u32string_view run, int32_t x) {
            EXPECT_TRUE(DrawRun(font.font, {run}, x, 20, kWhite, letters.Surface(), letters.All()));
            return x + MeasureRun(font.font, run);
        };
        // The Hebrew letters, alef and bet, stand from right to left; control characters have no width.
        int32_t x = 20;
        for (const char32_t *letter : {U"H", U"N", U" ", U"\u05D1", U"\u05D0", U"d", U""}) x = draw(letter, x);
        EXPECT_EQ(Drawn(request, {U"HN \u05D0\u05D1d"}), letters);
        EXPECT_EQ(Drawn(request, {U"\tH\r\nN\x1F \u0081d"}), Drawn(request, {U"HN d"}));
        EXPECT_EQ(MeasureRun(font.font, U"\t\n\r\u0081"), 0);
    }
}

TEST(Text, ALineGoesTheWayOfItsParagraph) {
    const FontRequest request = {"Arial", 31};
    EXPECT_EQ(Drawn(request, {U"2024!", U"\u05D0 2024!"}), Drawn(request, {U"!2024"}));
    EXPECT_EQ(Drawn(request, {U"2024!", U"12 a \u05D0 2024!"}), Drawn(request, {U"2024!"}));
    EXPECT_EQ(Drawn(request, {U"ab-\u05D0", U"\u05D1"}), Drawn(request, {U"\u05D0-ab", U"c"}));
}

TEST(Text, OnlyWholePixelsAreDrawnWithoutAntialias) {
    const TextCanvas smooth = Drawn({"Arial", 20}, {kMixed});
    const TextCanvas whole = Drawn({"Arial", 20, 400, false, false}, {kMixed});
    size_t greys = 0;
    for (size_t i = 0; i < smooth.pixels.size(); i += 3) {
        greys += smooth.pixels[i] % 255 != 0;
        EXPECT_EQ(whole.pixels[i] % 255, 0);
        // Grey edges, never coloured ones.
        EXPECT_TRUE(smooth.pixels[i] == smooth.pixels[i + 1] && smooth.pixels[i] == smooth.pixels[i + 2]);
    }
    EXPECT_GT(greys, 500u);
}

TEST(Text, AnInkCoversByItsColor) {
    TextCanvas canvas(80, 80, 200);
    const FontOwner font({"Arial", 80, 700});
    ASSERT_TRUE(font);
    ASSERT_TRUE(DrawRun(font.font, {U"I"}, 0, 0, {0x102030}, canvas.Surface(), canvas.All()));
    EXPECT_EQ(std::memcmp(canvas.At(MeasureRun(font.font, U"I") / 2, 40), "\x10\x20\x30", 3), 0);
    EXPECT_TRUE(*canvas.At(0, 0) == 200 && *canvas.At(79, 40) == 200);
}

TEST(Text, APenDrawsHalfItsWidthOnBothSidesOfTheOutline) {
    const FontRequest request = {"Arial", 200, 700}; // stems of 25 pixels
    const TextRect box = InkBox(Drawn(request, {U"l"}));
    for (int32_t pen : {1, 2, 6, 11}) {
        const TextCanvas stroked = Drawn(request, {U"l"}, {0xFFFFFF, pen});
        const TextRect grown = InkBox(stroked);
        for (const int32_t growth :
             {box.left - grown.left, grown.right - box.right, box.top - grown.top, grown.bottom - box.bottom})
            EXPECT_NEAR(growth, pen / 2.0, 1) << pen;
        const int32_t y = (box.top + box.bottom) / 2;
        int32_t covered = 0;
        for (int32_t x = 0; x < stroked.width; x++) covered += *stroked.At(x, y);
        EXPECT_NEAR(covered / 255.0, 2 * pen, 0.1) << pen;
        EXPECT_EQ(*stroked.At((box.left + box.right) / 2, y), 0) << pen;
    }
}

TEST(Text, NothingIsDrawnOutsideTheClipAndTheSameInside) {
    constexpr int32_t kMargin = 200;
    const TextRun run = {U"Ag\u05D0\u65E5 %"};
    std::mt19937 random(5);
    const auto draw = [&](int32_t from, int32_t to) { return std::uniform_int_distribution(from, to)(random); };
    for (int round = 0; round < 100; round++) {
        const FontOwner font({"Arial", draw(5, 90), draw(0, 1) * 300 + 400, draw(0, 1) != 0, draw(0, 1) != 0});
        ASSERT_TRUE(font);
        const TextInk ink = {0x30FF80, draw(-2, 4)};
        const int32_t x = draw(-150, 60), y = draw(-100, 60);
        TextCanvas whole(60 + 2 * kMargin, 50 + 2 * kMargin, 9);
        ASSERT_TRUE(DrawRun(font.font, run, x + kMargin, y + kMargin, ink, whole.Surface(), whole.All()));
        TextCanvas clipped(60, 50, 9);
        TextSurface surface = clipped.Surface();
        const bool isBottomUp = draw(0, 1) != 0;
        if (isBottomUp) {
            surface.top += (clipped.height - 1) * surface.stride;
            surface.stride = -surface.stride;
        }
        const TextRect clip = {draw(-9, 40), draw(-9, 40), draw(5, 70), draw(5, 60)};
        ASSERT_TRUE(DrawRun(font.font, run, x, y, ink, surface, clip));
        for (int32_t i = 0; i < 60 * 50; i++) {
            const int32_t column = i % 60, row = i / 60;
            const bool isInside = column >= clip.left && column < clip.right && row >= clip.top && row < clip.bottom;
            const uint8_t *expected = isInside ? whole.At(column + kMargin, row + kMargin) : whole.At(0, 0);
            const uint8_t *pixel = clipped.At(column, isBottomUp ? clipped.height - 1 - row : row);
            ASSERT_TRUE(std::equal(pixel, pixel + 3, expected)) << round << ": " << column << ", " << row;
        }
    }
    const FontOwner font({"Arial", 90});
    TextCanvas canvas(9, 9);
    constexpr TextRect kNoLimit = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (int32_t x : {INT32_MIN, INT32_MAX}) {
        EXPECT_TRUE(DrawRun(font.font, {U"far"}, x, x, kWhite, canvas.Surface(), kNoLimit));
        EXPECT_TRUE(DrawRun(font.font, {U"none"}, 0, 0, kWhite, canvas.Surface(), {x, 0, x, 9}));
    }
    EXPECT_EQ(canvas, TextCanvas(9, 9));
}

TEST(Text, FamiliesAreSortedAndStandOnce) {
    std::vector<std::string> names;
    ForEachFontFamily(
        [](void *user, const char *name) { static_cast<std::vector<std::string> *>(user)->push_back(name); }, &names);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "Liberation Sans"), names.end());
}

TEST(Text, TheSettingsOfTheDesktopChangeNothing) {
    // In processes of their own, as the settings are read once.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const SharedFolder folder;
    const auto draw = [&](const char *file) {
        std::ofstream out(file);
        for (const FontRequest &request : {FontRequest{"Arial", 17}, FontRequest{"Arial", 40, 700, true}}) {
            const TextCanvas canvas = Drawn(request, {kMixed});
            out.write(reinterpret_cast<const char *>(canvas.pixels.data()),
                      static_cast<std::streamsize>(canvas.pixels.size()));
        }
        out.close();
        std::exit(out ? 0 : 1);
    };
    const std::string plain = folder.path + "/plain", set = folder.path + "/set";
    const auto drawWithSettings = [&] {
        std::string rules = "<include>/etc/fonts/fonts.conf</include>";
        for (const char *target : {"pattern", "font"}) {
            rules += std::string("<match target='") + target + "'>";
            for (const char *name : {"antialias", "hinting", "autohint", "embeddedbitmap", "embolden"})
                rules += std::string("<edit name='") + name + "' mode='assign'><bool>" +
                         (*name == 'h' || *name == 'a' ? "false" : "true") + "</bool></edit>";
            rules += "<edit name='hintstyle' mode='assign'><const>hintfull</const></edit>"
                     "<edit name='rgba' mode='assign'><const>rgb</const></edit></match>";
        }
        const std::string file = folder.path + "/fonts.conf";
        std::ofstream(file) << "<?xml version='1.0'?><fontconfig>" << rules << "</fontconfig>";
        ::setenv("FONTCONFIG_FILE", file.c_str(), 1);
        draw(set.c_str());
    };
    EXPECT_EXIT(draw(plain.c_str()), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(drawWithSettings(), ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadText(plain).size(), 2u * 700 * 240 * 3);
    EXPECT_TRUE(ReadText(plain) == ReadText(set));
}

} // namespace lmf::testing
