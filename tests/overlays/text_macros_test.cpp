#include "overlays/text_macros.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/system.h"

namespace lmf::testing {

static std::tm Time(int hour, int year) {
    std::tm time = {};
    time.tm_year = year - 1900, time.tm_mon = 5, time.tm_mday = 3, time.tm_wday = 4;
    time.tm_hour = hour, time.tm_min = 5, time.tm_sec = 9;
    return time;
}

static std::string Expanded(const char *text, size_t limit, const TextMacroValues &values) {
    std::string out(limit + 8, '#');
    ExpandTextMacros(out.data(), text, limit, values);
    EXPECT_EQ(out.substr(limit), "########") << text;
    return out.c_str();
}

TEST(TextMacros, StandForTheirValues) {
    const std::tm morning = Time(9, 2024);
    const TextMacroValues values = {640, 480, &morning,
                                    [](char *out) { return std::strcpy(out, "jANE o'NEIL") != nullptr; }};
    const std::pair<const char *, const char *> cases[] = {
        {"", ""},
        {"%", ""},
        {"end%", "end"},
        {"100%%", "100%"},
        {"%%C", "%C"},
        {"Copyright %C %Y %N", "Copyright \xA9 2024 Jane O'neil"},
        {"%c%h%v%n%d%s%t%y", "\xA9"
                             "640480Jane O'neilThu Jun  3 2024Thu Jun  3 09:05:09 20249:05:09 AM2024"},
        {"%D|%T|%HX%V", "Thu Jun  3 2024|9:05:09 AM|640X480"},
        {"%x%Z%1% %\xC3\xA9%\xE9", "xZ1 \xC3\xA9\xE9"}};
    for (const auto &[text, expanded] : cases) EXPECT_EQ(Expanded(text, 260, values), expanded) << text;
}

TEST(TextMacros, TheTimesOfTheDay) {
    const std::pair<int, const char *> cases[] = {
        {0, "0:05:09 AM"}, {11, "11:05:09 AM"}, {12, "12:05:09 AM"}, {13, "1:05:09 PM"}, {23, "11:05:09 PM"}};
    for (const auto &[hour, text] : cases) {
        const std::tm time = Time(hour, 2024);
        EXPECT_EQ(Expanded("%T", 260, {1, 1, &time, UserName}), text);
    }
    const std::tm far = Time(1, 12345);
    EXPECT_EQ(Expanded("%Y|%D|%S", 260, {1, 1, &far, UserName}), "1234|Thu Jun  3 1234|Thu Jun  3 01:05:09 1234");
    EXPECT_EQ(Expanded("<%T%Y%D%S>", 260, {1, 1, nullptr, UserName}), "<>");
}

TEST(TextMacros, TheOwnersNameHasCapitalsInEveryScript) {
    const auto name = [](bool (*user)(char *)) { return Expanded("<%N>", 260, {1, 1, nullptr, user}); };
    EXPECT_EQ(name([](char *out) { return std::strcpy(out, "\xC3\x89MILE  \xC3\x98STER-ZOLA") != nullptr; }),
              "<\xC3\x89mile  \xC3\x98ster-zola>");
    EXPECT_EQ(name([](char *out) { return std::strcpy(out, "\xCE\xA9\xCE\x9C\xCE\x93 \xD0\xB8\xD0\x92") != nullptr; }),
              "<\xCE\xA9\xCE\xBC\xCE\xB3 \xD0\x98\xD0\xB2>");
    EXPECT_EQ(name([](char *) { return false; }), "<>");
}

TEST(TextMacros, APieceThatDoesNotFitIsLeftOutAndALaterOneMayFit) {
    const std::tm time = Time(9, 2024);
    const TextMacroValues values = {64000, 7, &time, UserName};
    const std::tuple<const char *, size_t, const char *> cases[] = {
        {"abc", 1, ""},        {"abc", 3, "ab"},          {"abc", 4, "abc"},
        {"%H", 5, ""},         {"%H", 6, "64000"},        {"a%H%Vb", 4, "a7b"},
        {"ab%Y%Hc", 6, "abc"}, {"ab\xC3\xA9z", 4, "abz"}, {"ab\xC3\xA9z", 5, "ab\xC3\xA9"}};
    for (const auto &[text, limit, expanded] : cases)
        EXPECT_EQ(Expanded(text, limit, values), expanded) << text << limit;
}

TEST(TextMacros, TakeTheSystemsClockAndUser) {
    ::setenv("SOURCE_DATE_EPOCH", "1000000000", 1);
    ::setenv("TZ", "UTC", 1);
    char out[260];
    TextMacroExpand(out, "%S %Hx%V", sizeof out, 3, 4);
    EXPECT_STREQ(out, "Sun Sep  9 01:46:40 2001 3x4");
    ::unsetenv("SOURCE_DATE_EPOCH");
    ::unsetenv("TZ");
    char name[kUserNameSize];
    ASSERT_TRUE(UserName(name));
    EXPECT_EQ(std::strchr(name, ','), nullptr);
    TextMacroExpand(out, "%N", sizeof out, 3, 4);
    EXPECT_STRCASEEQ(out, name);
}

} // namespace lmf::testing
