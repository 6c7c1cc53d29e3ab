// Torn Edges and Paper Curl: what stays, what is torn off or lifted, and how smooth it is.
#include <set>

#include "support/reference.h"

namespace lmf::testing {

namespace {

LockedDib Flat(int32_t width, int32_t height, uint32_t value) {
    return MakePicture(width, height, 24, Pixels(static_cast<size_t>(width) * static_cast<size_t>(height), value));
}

const std::vector<Setting> kBareTear = {{&P::FilterTornHairline, 0},
                                        {&P::FilterTornOutlineEnable, 0},
                                        {&P::FilterTornShadowEnable, 0},
                                        {&P::FilterTornLateralDev, 20}};

std::vector<Setting> With(std::vector<Setting> settings, const std::vector<Setting> &more) {
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

/// Levels of red that a picture has.
std::set<int32_t> Levels(const ReadView &picture) {
    std::set<int32_t> levels;
    ForEachPixel(picture, [&](int32_t x, int32_t y) { levels.insert(RedOf(DibGetPixel(picture, x, y))); });
    return levels;
}

} // namespace

TEST(TornEdges, TearsOnlyTheChosenSides) {
    const LockedDib source = Flat(300, 300, 0);
    const NumberField sides[] = {&P::FilterTornLeftSide, &P::FilterTornTopSide, &P::FilterTornRightSide,
                                 &P::FilterTornBottomSide};
    for (int32_t torn = 0; torn < 4; torn++) {
        std::vector<Setting> settings = kBareTear;
        for (int32_t i = 0; i < 4; i++) settings.push_back({sides[i], i == torn});
        const LockedDib result = RunKernel("Torn Edges", source, settings);
        int32_t white[4] = {};
        for (int32_t i = 40; i < 260; i++) {
            white[0] += DibGetPixel(result, 0, i) == 0xFFFFFF;
            white[1] += DibGetPixel(result, i, 0) == 0xFFFFFF;
            white[2] += DibGetPixel(result, 299, i) == 0xFFFFFF;
            white[3] += DibGetPixel(result, i, 299) == 0xFFFFFF;
        }
        for (int32_t i = 0; i < 4; i++) EXPECT_EQ(white[i] > 150, i == torn) << torn << ' ' << i;
        // 20 and its finer parts, 28.4 of 500, are 17 of 300 pixels.
        for (int32_t y = 18; y < 282; y++)
            for (int32_t x = 18; x < 282; x++) ASSERT_EQ(DibGetPixel(result, x, y), 0u) << x << ',' << y;
        EXPECT_GE(Levels(result).size(), 64u) << "the edge is smooth";
    }
}

TEST(TornEdges, IsTheSameTearAtEverySize) {
    const auto tear = [](int32_t width, int32_t height, int32_t seed) {
        return RunKernel("Torn Edges", Flat(width, height, 0), With(kBareTear, {{&P::FilterTornSeed, seed}}));
    };
    const LockedDib small = tear(200, 150, 5000), large = tear(800, 600, 5000), other = tear(200, 150, 5001);
    int64_t apart = 0, otherApart = 0, paper = 0;
    ForEachPixel(small, [&](int32_t x, int32_t y) {
        int32_t sum = 0;
        for (int32_t i = 0; i < 16; i++) sum += RedOf(DibGetPixel(large, x * 4 + i % 4, y * 4 + i / 4));
        const int32_t level = RedOf(DibGetPixel(small, x, y));
        apart += std::abs(sum / 16 - level);
        otherApart += std::abs(static_cast<int32_t>(RedOf(DibGetPixel(other, x, y))) - level);
        paper += level;
    });
    EXPECT_LT(apart * 20, paper);
    EXPECT_GT(otherApart * 4, paper);
}

TEST(TornEdges, AlphaLeavesThePicture) {
    const LockedDib source = RandomPicture(90, 70, kModeTrueColor, 4);
    const LockedDib alpha = MakePicture(90, 70, 8, Pixels(90 * 70, 100));
    FilterContext context = ContextWith({{&P::FilterTornAlpha, 1}});
    context.second = alpha.owner.handle;
    const LockedDib result = RunKernel("Torn Edges", source, context);
    EXPECT_TRUE(SamePicture(result, source));
    const LockedDib second(context.secondResult);
    ASSERT_TRUE(second);
    EXPECT_EQ(DibGetPixel(second, 45, 35), 100u);
    int32_t torn = 0;
    for (int32_t y = 0; y < 70; y++) torn += DibGetPixel(second, 0, y) < 60;
    EXPECT_GT(torn, 20);
}

TEST(TornEdges, ShadowFallsInsideThePicture) {
    const LockedDib result = RunKernel("Torn Edges", Flat(500, 500, 0xFFFFFF),
                                       {{&P::FilterTornHairline, 0}, {&P::FilterTornOutlineEnable, 0}});
    // On white, the shadow alone is seen: offset 20 at one pixel a unit, half as dark as black.
    const auto at = [&](int32_t x, int32_t y) { return RedOf(DibGetPixel(result, x, y)); };
    EXPECT_EQ(at(250, 250), 255);
    EXPECT_NEAR(at(250, 478), 127, 2);
    EXPECT_NEAR(at(478, 250), 127, 2);
    EXPECT_GE(at(499, 250), 240);
    EXPECT_EQ(at(5, 490), 255);
}

TEST(PaperCurl, RollsTheCornerUp) {
    const LockedDib source = Flat(200, 160, 0x00FF00);
    for (int32_t direction = 0; direction < 4; direction++) {
        const LockedDib result =
            RunKernel("Paper Curl", source, {{&P::FilterCurlDirection, direction}, {&P::FilterCurlColor, 0x0000FF}});
        const auto at = [&](int32_t x, int32_t y) {
            return DibGetPixel(result, direction & 1 ? x : 199 - x, direction & 2 ? y : 159 - y);
        };
        EXPECT_EQ(at(199, 159), 0xFFFFFFu) << "paper";
        EXPECT_EQ(at(0, 0), 0x00FF00u) << "the flat page";
        // The fold is a diagonal; right behind it lies the back, mirrored in it.
        EXPECT_GT(RedOf(at(95, 75)), 250);
        EXPECT_LT(GreenOf(at(95, 75)), 10);
        EXPECT_GE(Levels(result).size(), 100u);
    }
}

TEST(PaperCurl, AntialiasSmoothsTheEdge) {
    // The tip of the back lies on the flat page: count the mixes of its colour with the page's.
    const auto mixes = [](int32_t antialias) {
        const LockedDib result = RunKernel(
            "Paper Curl", Flat(300, 220, 0),
            {{&P::FilterCurlAntialias, antialias}, {&P::FilterCurlDirection, 3}, {&P::FilterCurlColor, 0xFF00FF}});
        std::set<uint32_t> levels;
        for (int32_t y = 0; y < 90; y++)
            for (int32_t x = 0; x < 150; x++) levels.insert(DibGetPixel(result, x, y));
        return levels.size();
    };
    EXPECT_GE(mixes(1), 16u);
    EXPECT_LE(mixes(0), 3u);
}

TEST(PaperCurl, TakesTheClipboardInItsCorner) {
    const LockedDib source = Flat(60, 60, 0x00FF00), clip = Flat(10, 20, 0x123456);
    FilterContext context = ContextWith({{&P::FilterCurlClipboard, 1}, {&P::FilterCurlDirection, 3}});
    context.clipboard = clip.owner.handle;
    const LockedDib result = RunKernel("Paper Curl", source, context);
    EXPECT_EQ(DibGetPixel(result, 59, 59), 0x123456u);
    EXPECT_EQ(DibGetPixel(result, 50, 50), 0x123456u);
    EXPECT_EQ(DibGetPixel(result, 49, 59), 0xFFFFFFu) << "paper beside it";
}

} // namespace lmf::testing
