#include <vector>

#include <gtest/gtest.h>

#include "overlays/social_destinations.h"

namespace lmf::testing {

static std::vector<SocialDestination> Read(std::string_view text) {
    std::vector<SocialDestination> list;
    ReadDestinations(
        text,
        [](void *target, int32_t index, const SocialDestination &destination) {
            auto *made = static_cast<std::vector<SocialDestination> *>(target);
            EXPECT_EQ(static_cast<size_t>(index), made->size());
            made->push_back(destination);
        },
        &list);
    return list;
}

TEST(SocialDestinations, ALineIsARunOfAttributes) {
    const struct {
        const char *line, *name;
        int32_t width, depth;
    } cases[] = {
        {R"(name="Banner 1500 x 500" width=1500 depth=500)", "Banner 1500 x 500", 1500, 500},
        {"\t DEPTH=2\tWidth=1 nAmE=a", "a", 1, 2},
        {"name=first name=second width=1 width=2", "first", 1, 0},
        {"name=a\" b\tc\"d\"e f\" width=\" 7\"", "a b\tcde f", 7, 0},
        {"name=\"open width=3", "open width=3", 0, 0},
        {"names=x name width=3 =4 height=5 de pth=6", "", 3, 0},
        {"width = 5 depth=-8x name=a=b", "a=b", 0, -8},
        {"name=cut\rname=b width=1", "cut", 0, 0},
        {"name= width=99999999999", "", INT32_MAX, 0},
        {"", "", 0, 0},
    };
    for (const auto &each : cases) {
        const SocialDestination read = ParseDestination(each.line);
        EXPECT_STREQ(read.name, each.name) << each.line;
        EXPECT_EQ(read.width, each.width) << each.line;
        EXPECT_EQ(read.depth, each.depth) << each.line;
    }
    const SocialDestination all = ParseDestination("num=3 den=4 flags=5");
    EXPECT_EQ(all.num * 100 + all.den * 10 + all.flags, 345);
}

TEST(SocialDestinations, EveryLineCountsAndALongOneTwice) {
    const std::string longName(254, 'n');
    const auto list = Read("\xEF\xBB\xBFname=a width=1\r\n\r\nwidth=2\nname=" + longName + "rest width=3\nname=b");
    ASSERT_EQ(list.size(), 6u);
    EXPECT_STREQ(list[0].name, "a");
    EXPECT_EQ(list[0].width, 1);
    EXPECT_STREQ(list[1].name, "");
    EXPECT_EQ(list[2].width, 2);
    EXPECT_EQ(list[3].name, longName);
    EXPECT_EQ(list[4].width, 3);
    EXPECT_STREQ(list[5].name, "b");
    EXPECT_TRUE(Read("").empty());
}

} // namespace lmf::testing
