#include "common/text_decoding.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace lmf::testing {

static std::u32string Decoded(const std::string &text) {
    std::u32string characters(text.size(), U'\0');
    characters.resize(DecodeText(text.c_str(), characters.data()));
    return characters;
}

TEST(TextDecoding, ReadsUtf8AndTakesEveryOtherByteAsCodePage1252) {
    const struct {
        const char *text;
        const char32_t *characters;
    } cases[] = {
        {"", U""},
        {"plain \x7F\t", U"plain \x7F\t"},
        {"\xC3\xA9t\xC3\xA9 \xD7\xA9 \xE6\x97\xA5 \xF0\x9F\x98\x80", U"\u00E9t\u00E9 \u05E9 \u65E5 \U0001F600"},
        {"\xC2\x80 \xDF\xBF \xE0\xA0\x80 \xEF\xBF\xBF \xF0\x90\x80\x80 \xF4\x8F\xBF\xBF",
         U"\U00000080 \u07FF \u0800 \uFFFF \U00010000 \U0010FFFF"},
        {"\xA9 2024", U"\u00A9 2024"},
        {"\x80\x85\x8A\x99\x9F\xFF", U"\u20AC\u2026\u0160\u2122\u0178\u00FF"},
        {"\x81|\x8D|\x8F|\x90|\x9D", U"\U00000081|\U0000008D|\U0000008F|\U00000090|\U0000009D"},
        // Longer than they need to be, surrogates, beyond the last character.
        {"\xC0\x80\xC1\xBF", U"\u00C0\u20AC\u00C1\u00BF"},
        {"\xE0\x9F\xBF", U"\u00E0\u0178\u00BF"},
        {"\xF0\x8F\xBF\xBF", U"\u00F0\U0000008F\u00BF\u00BF"},
        {"\xED\xA0\x80", U"\u00ED\u00A0\u20AC"},
        {"\xED\xBF\xBF \xED\x9F\xBF \xEE\x80\x80", U"\u00ED\u00BF\u00BF \uD7FF \uE000"},
        {"\xF4\x90\x80\x80", U"\u00F4\U00000090\u20AC\u20AC"},
        {"\xF8\x88\x80\x80\x80", U"\u00F8\u02C6\u20AC\u20AC\u20AC"},
        // Cut short by the end, by a letter, by the next sequence.
        {"\xC3", U"\u00C3"},
        {"\xE6\x97", U"\u00E6\u2014"},
        {"\xF0\x9F\x98", U"\u00F0\u0178\u02DC"},
        {"\xE6\x97z", U"\u00E6\u2014z"},
        {"\xC3\xC3\xA9\xA9", U"\u00C3\u00E9\u00A9"},
    };
    for (const auto &[text, characters] : cases) {
        EXPECT_EQ(Decoded(text), characters) << text;
        // In UTF-8 it reads the same again.
        std::string utf8(std::strlen(text) * 3 + 1, '\0');
        utf8.resize(TextToUtf8(text, utf8.data(), utf8.size()));
        EXPECT_EQ(Decoded(utf8), characters) << text;
    }
}

TEST(TextDecoding, Utf8TakesTheShortestSequenceAndIsCutAtWholeCharacters) {
    char out[4];
    for (char32_t character = 1; character <= 0x10FFFF; character++) {
        if (character == 0xD800) character = 0xE000;
        const size_t length = EncodeUtf8(character, out);
        ASSERT_EQ(length, character < 0x80 ? 1u : character < 0x800 ? 2u : character < 0x10000 ? 3u : 4u);
        size_t read;
        ASSERT_EQ(NextCharacter(std::string(out, length).c_str(), &read), character);
        ASSERT_EQ(read, length);
    }
    char room[5];
    EXPECT_EQ(TextToUtf8("a\x80\x80", room, 5), 4u);
    EXPECT_STREQ(room, "a\xE2\x82\xAC");
    EXPECT_EQ(TextToUtf8("a\x80\x80", room, 4), 1u);
    EXPECT_STREQ(room, "a");
    EXPECT_EQ(TextToUtf8("a", room, 1), 0u);
    EXPECT_STREQ(room, "");
}

} // namespace lmf::testing
