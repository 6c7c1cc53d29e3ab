// Shards: how much is covered, with what, and from which random numbers.
#include <set>

#include "common/random.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

LockedDib Checkerboard(int32_t width, int32_t height) {
    return PictureLike(LockedDib(DibCreateSolid(width, height, 0)),
                       [](int32_t x, int32_t y) { return (x + y) % 2 ? 0xFFFFFFu : 0u; });
}

int64_t ChangedPixels(const ReadView &before, const ReadView &after) {
    int64_t changed = 0;
    ForEachPixel(before,
                 [&](int32_t x, int32_t y) { changed += DibGetPixel(before, x, y) != DibGetPixel(after, x, y); });
    return changed;
}

} // namespace

TEST(Shards, DensityIsTheShareThatIsCovered) {
    const LockedDib source = Checkerboard(250, 200);
    for (int32_t type = 0; type < 6; type++) {
        for (int32_t density : {5, 30, 75}) {
            const LockedDib result = RunKernel(
                "Shards", source,
                {{&P::FilterShardsMode, type}, {&P::FilterShardsDensity, density}, {&P::FilterShardsSize, 40}});
            const double share = static_cast<double>(ChangedPixels(source, result)) / (250 * 200) * 100;
            // The pixels of the edges are changed though less than half of them may be covered.
            EXPECT_GE(share, density);
            EXPECT_LE(share, density * 1.2 + 2) << type;
        }
    }
}

TEST(Shards, FullDensityLeavesNoPixelAsItWas) {
    for (int32_t type = 0; type < 6; type++) {
        for (int32_t size : {5, 10, 50}) {
            const LockedDib source = Checkerboard(90, 70);
            const LockedDib result =
                RunKernel("Shards", source,
                          {{&P::FilterShardsMode, type}, {&P::FilterShardsDensity, 100}, {&P::FilterShardsSize, size}});
            EXPECT_EQ(ChangedPixels(source, result), 90 * 70) << type << ',' << size;
        }
    }
}

TEST(Shards, ShowTheMeanOfWhatTheyCover) {
    // One square covers all of a small picture.
    const LockedDib small = MakePicture(2, 2, 24, {0x000000, 0x0000FF, 0x00FF00, 0x0000FF});
    ExpectPixels(RunKernel("Shards", small, {{&P::FilterShardsMode, 3}, {&P::FilterShardsSize, 50}}),
                 [](int32_t, int32_t) { return 0x004080u; });
    const LockedDib plain(DibCreateSolid(60, 50, 0x123456));
    EXPECT_EQ(PixelsOf(RunKernel("Shards", plain, {{&P::FilterShardsDensity, 100}})), Pixels(3000, 0x123456));
}

TEST(Shards, TheSeedDecides) {
    const LockedDib source = RandomPicture(120, 90, kModeTrueColor, 3);
    std::set<Pixels> results;
    for (int32_t seed : {1000, 1001, 32760, 1000}) {
        SeedRandom(static_cast<uint32_t>(results.size()) + 77); // what was drawn before does not count
        results.insert(PixelsOf(RunKernel("Shards", source, {{&P::FilterShardsSeed, seed}})));
    }
    EXPECT_EQ(results.size(), 3u);
    for (int32_t type = 0; type < 6; type++)
        results.insert(
            PixelsOf(RunKernel("Shards", source, {{&P::FilterShardsSeed, 2000}, {&P::FilterShardsMode, type}})));
    EXPECT_EQ(results.size(), 9u);
}

} // namespace lmf::testing
