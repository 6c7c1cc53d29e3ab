#include "overlays/text_layout.h"

#include <array>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "platform/memory.h"
#include "support/text_surface.h"

namespace lmf::testing {

/// A font whose letters are all equally wide, so that widths can be told in letters.
class TextLayout : public ::testing::Test {
protected:
    static constexpr FontRequest kRequest = {"Courier New", 20};
    static constexpr TextInk kInk = {0xFFFFFF};
    static constexpr int32_t kHeight = 20;
    static constexpr TextRect kAt = {30, 10, 30, 10};

    FontOwner font{kRequest};
    TextCanvas drawn{400, 200};
    TextCanvas expected{400, 200};
    int32_t letter = 0;

    void SetUp() override {
        ASSERT_TRUE(font);
        letter = MeasureRun(font.font, U"x");
        ASSERT_EQ(letter, 11); // odd, so that halves are told from wholes
    }
    /// A box `letters` and some pixels wide, of three lines and a half.
    TextRect Box(int32_t letters, int32_t pixels = 0) const {
        return {kAt.left, kAt.top, kAt.left + letters * letter + pixels, kAt.top + 70};
    }
    TextDrawing Drawing(TextCanvas &canvas) { return {font.font, kInk, canvas.Surface()}; }
    void Expect(std::u32string_view run, int32_t x, int32_t y, const TextRect *clip = nullptr) {
        const TextSurface surface = expected.Surface();
        EXPECT_TRUE(DrawRun(font.font, {run}, x, y, kInk, surface, clip != nullptr ? *clip : expected.All()));
    }
    void StartAgain() { drawn = expected = TextCanvas(400, 200); }
    void ExpectPlain(const char *text, TextRect *box, uint32_t format, int32_t height) {
        const TextRect before = *box;
        EXPECT_EQ(DrawTextPlain(Drawing(drawn), text, box, format), height) << text;
        EXPECT_TRUE(drawn == expected) << text << ", " << format;
        EXPECT_EQ(box->bottom, before.bottom);
    }
};

TEST_F(TextLayout, BreaksLinesBetweenWords) {
    const struct {
        const char *text;
        int32_t letters;
        std::vector<const char32_t *> lines;
    } cases[] = {
        {"", 5, {U""}},
        {"one two", 7, {U"one two"}},
        {"one two", 6, {U"one", U"two"}},
        {"one two", 3, {U"one", U"two"}}, // not even the space fits
        {"one    two", 5, {U"one", U"two"}},
        {"one    ", 5, {U"one"}},
        {"one    \rtwo", 5, {U"one", U"two"}},
        {"  one", 5, {U"  one"}},
        {"one  x", 6, {U"one  x"}},
        {"x a-longword b", 6, {U"x", U"a-long", U"word b"}}, // broken inside only when it stands alone
        {"abc", 0, {U"a", U"b", U"c"}},
        {"one\r\ntwo", 9, {U"one", U"two"}},
        {"one\n\ntwo", 9, {U"one", U"", U"two"}},
        {"\r\r", 9, {U"", U"", U""}},
        {"na\xC3\xAFve \xA9x", 5, {U"na\u00EFve", U"\u00A9x"}},
    };
    for (const auto &[text, letters, lines] : cases) {
        StartAgain();
        TextRect box = Box(letters);
        const TextRect before = box;
        const auto count = static_cast<int32_t>(lines.size());
        for (int32_t i = 0; i < count; i++) Expect(lines[i], box.left, box.top + i * kHeight, &box);
        ExpectPlain(text, &box, kTextWordBreak, count * kHeight);
        // Measured it is the same, and nothing is drawn.
        EXPECT_EQ(DrawTextPlain({font.font, kInk, {}}, text, &box, kTextWordBreak | kTextMeasure), count * kHeight);
        EXPECT_EQ(box.bottom, box.top + count * kHeight) << text;

        // Spaced it breaks the same, but for line feeds alone.
        if (std::string(text).find("\n\n") != std::string::npos) continue;
        StartAgain();
        box = before;
        for (int32_t i = 0; i < count; i++) Expect(lines[i], box.left, box.top + i * 18);
        EXPECT_EQ(DrawTextSpaced(Drawing(drawn), text, &box, kTextWordBreak, 100, 92), (count - 1) * 18 + kHeight);
        EXPECT_TRUE(drawn == expected) << text;
    }
}

TEST_F(TextLayout, StandsInItsBox) {
    constexpr uint32_t kLine = kTextSingleLine;
    const std::array<int32_t, 4> cases[] = {// format, pixels by which the box is wider than the text, x, y
                                            {kTextLeft, 7, 0, 0},
                                            {kTextCenter, 6, 3, 0},
                                            {kTextCenter, 7, 3, 0},
                                            {kTextRight, 7, 7, 0},
                                            {kTextCenter, -7, -3, 0},
                                            {kTextRight, -7, -7, 0},
                                            {kLine | kTextBottom | kTextRight, 9, 9, 50},
                                            {kLine | kTextVerticalCenter | kTextCenter, 9, 4, 25},
                                            {kTextBottom, 0, 0, 0}}; // more lines have no bottom
    for (const auto &[format, pixels, x, y] : cases) {
        StartAgain();
        TextRect box = Box(6, pixels);
        Expect(U"Sample", box.left + x, box.top + y, &box);
        ExpectPlain("Sample", &box, format, kHeight);
    }
    // A box that is lower than the line cuts it too, but not the strokes of a pen.
    StartAgain();
    TextRect box = {40, 40, 90, 45};
    Expect(U"Sample", 40, 40 + (5 - kHeight) / 2, &box);
    ExpectPlain("Sample", &box, kTextSingleLine | kTextVerticalCenter, kHeight);
    StartAgain();
    const TextDrawing stroke = {font.font, {0x80FF00, 4}, drawn.Surface()};
    EXPECT_EQ(DrawTextPlain(stroke, "Sample", &box, kTextSingleLine), kHeight);
    EXPECT_TRUE(DrawRun(font.font, {U"Sample"}, 40, 40, stroke.ink, expected.Surface(), expected.All()));
    EXPECT_TRUE(drawn == expected);
}

TEST_F(TextLayout, ASingleLineIsNotBrokenAndMayEndInAnEllipsis) {
    const std::tuple<const char *, int32_t, uint32_t, const char32_t *> cases[] = {
        {"one two\r\nthree", 5, kTextWordBreak, U"one twothree"},
        {"one two", 7, kTextEndEllipsis, U"one two"},
        {"one two", 6, kTextEndEllipsis, U"one..."},
        {"one two", 3, kTextEndEllipsis, U"..."},
        {"one two", 1, kTextEndEllipsis, U"..."},
        {"", 0, kTextEndEllipsis, U""}};
    for (const auto &[text, letters, format, line] : cases) {
        StartAgain();
        TextRect box = Box(letters);
        Expect(line, box.left, box.top, &box);
        ExpectPlain(text, &box, format | kTextSingleLine, kHeight);
    }
}

TEST_F(TextLayout, SpacingMovesEachCharacterAndLine) {
    const std::array<int32_t, 4> cases[] = {{120, 100, 13, 20}, {80, 60, 8, 12}, {101, 120, 11, 24}, {100, 99, 11, 19}};
    for (const auto &[charPercent, linePercent, advance, step] : cases) {
        for (uint32_t format : {kTextLeft, kTextCenter, kTextRight}) {
            for (int32_t pixels : {0, 1, 6, 7}) {
                StartAgain();
                TextRect box = {30, 10, 30 + 7 * advance + pixels, 11}; // nothing is cut at its bottom
                const std::u32string_view lines[] = {U"ab", U"\u0416 % de", U"x"};
                for (int32_t i = 0; i < 3; i++) {
                    const int32_t free = 7 * advance + pixels - static_cast<int32_t>(lines[i].size()) * advance;
                    int32_t x = 30 + (format == kTextCenter ? free / 2 : format == kTextRight ? free : 0);
                    if (format != kTextLeft) x += free % 2;
                    for (char32_t character : lines[i]) {
                        Expect({&character, 1}, x, 10 + i * step);
                        x += advance;
                    }
                }
                EXPECT_EQ(DrawTextSpaced(Drawing(drawn), "ab\r\n\xD0\x96 %\n de  \x01x", &box, format, charPercent,
                                         linePercent),
                          2 * step + 20);
                EXPECT_TRUE(drawn == expected) << charPercent << ", " << format << ", " << pixels;
            }
        }
    }
}

TEST_F(TextLayout, LettersThatJoinAreDrawnInRuns) {
    for (const auto &[text, run] : {std::pair{"a \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D!", U"a \u05E9\u05DC\u05D5\u05DD!"},
                                    {"e\xCC\x81x", U"e\u0301x"}}) {
        StartAgain();
        TextRect box = Box(20);
        Expect(run, box.left, box.top);
        EXPECT_EQ(DrawTextSpaced(Drawing(drawn), text, &box, kTextWordBreak, 120, 90), kHeight);
        EXPECT_TRUE(drawn == expected) << text;
    }
}

TEST_F(TextLayout, ABrokenLineGoesTheWayOfItsParagraph) {
    TextRect box = Box(4);
    const char32_t *runs[] = {U"\u05D0\u05D1\u05D2", U"x 1!", U"x 1!"};
    for (int32_t i = 0; i < 3; i++) {
        const TextRun run = {runs[i], i < 2 ? runs[0] : runs[i]};
        EXPECT_TRUE(DrawRun(font.font, run, box.left, box.top + i * kHeight, kInk, expected.Surface(), box));
    }
    const char *text = "\xD7\x90\xD7\x91\xD7\x92 x 1!\nx 1!";
    ExpectPlain(text, &box, kTextWordBreak, 3 * kHeight);
}

TEST_F(TextLayout, MeasuresAndGivesUpWhenMemoryIsShort) {
    int32_t width = 0, height = 0;
    ASSERT_TRUE(MeasureText(font.font, "\xC3\xA9\x80\t", &width, &height));
    EXPECT_TRUE(width == 2 * letter && height == kHeight) << width << ", " << height;
    const int64_t blocks = LiveBlocks();
    for (int64_t n = 0; n < 4; n++) {
        TextRect box = Box(4);
        FailAllocationAfter(n);
        EXPECT_EQ(MeasureText(font.font, "text", &width, &height), n > 0);
        FailAllocationAfter(n);
        EXPECT_EQ(DrawTextPlain(Drawing(drawn), "some text", &box, kTextWordBreak) != 0, n > 0);
        FailAllocationAfter(n);
        EXPECT_EQ(DrawTextSpaced(Drawing(drawn), "some text", &box, kTextWordBreak, 90, 100) != 0, n > 1);
        FailAllocationAfter(-1);
    }
    EXPECT_EQ(LiveBlocks(), blocks);
}

} // namespace lmf::testing
