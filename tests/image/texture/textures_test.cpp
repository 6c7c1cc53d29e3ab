#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>

#include <zlib.h>

#include "image/texture/textures.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// A picture of 8 bits that continues round its edges.
struct Tones {
    int32_t width, height;
    Pixels pixels;

    int32_t At(int32_t x, int32_t y) const {
        const int32_t column = (x + width) % width, row = (y + height) % height;
        return static_cast<int32_t>(pixels[static_cast<size_t>(row * width + column)]);
    }
};

/// Expects that the step over the edge is no larger than one of the steps inside, as a mean along the edge.
void ExpectNoSeam(const Tones &tones) {
    const auto stepBefore = [&](int32_t at, bool column) {
        int32_t sum = 0;
        for (int32_t i = 0; i < (column ? tones.height : tones.width); i++)
            sum += std::abs(column ? tones.At(at, i) - tones.At(at - 1, i) : tones.At(i, at) - tones.At(i, at - 1));
        return sum;
    };
    for (bool column : {false, true}) {
        int32_t largest = 0;
        for (int32_t at = 1; at < (column ? tones.width : tones.height); at++)
            largest = std::max(largest, stepBefore(at, column));
        EXPECT_LE(stepBefore(0, column), largest) << (column ? "left" : "top");
    }
}

uLong ChecksumOf(const LockedDib &picture) {
    const Pixels pixels = PixelsOf(picture);
    const std::vector<uint8_t> bytes(pixels.begin(), pixels.end());
    return crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
}

} // namespace

TEST(Textures, LieInAContainerOfTheAgreedLayout) {
    const std::span<const uint8_t> container = CanvasTextureContainer();
    const uint32_t size = static_cast<uint32_t>(container.size()) - 52;
    const uint32_t numbers[11] = {1049640, size, 1}; // of the picture, of the stream, and what is passed over
    ASSERT_GT(container.size(), 52u);
    EXPECT_EQ(std::memcmp(container.data(), "CPX_HEAD", 8), 0);
    EXPECT_EQ(std::memcmp(container.data() + 8, numbers, sizeof numbers), 0);
}

TEST(Textures, AreSixteenSquaresWithAMeanOf170AndARangeOfTheirOwn) {
    const LockedDib picture(CanvasTextures());
    EXPECT_EQ(ReadView(picture).blockSize, 1049640u);
    EXPECT_EQ(DibClassify(picture), kModeGrey);
    ASSERT_TRUE(ReadView(picture).width == 256 && ReadView(picture).height == 4096);

    const Pixels all = PixelsOf(picture);
    std::set<std::pair<int32_t, int32_t>> ranges;
    for (int32_t n = 0; n < kTextureCount; n++) {
        SCOPED_TRACE(n);
        const auto first = all.begin() + ptrdiff_t{n} * kTextureSide * kTextureSide;
        const Tones tones = {kTextureSide, kTextureSide, Pixels(first, first + kTextureSide * kTextureSide)};
        double sum = 0;
        for (uint32_t tone : tones.pixels) sum += tone;
        EXPECT_NEAR(sum / static_cast<double>(tones.pixels.size()), 170, 1);
        const auto [low, high] = std::minmax_element(tones.pixels.begin(), tones.pixels.end());
        EXPECT_GE(*high - *low, 40u);
        ranges.insert({*low, *high});
        ExpectNoSeam(tones);
    }
    EXPECT_EQ(ranges.size(), 16u);
}

TEST(JigsawRelief, IsFlatBetweenBevelsThatFaceTheTopLeft) {
    const LockedDib picture(JigsawRelief());
    EXPECT_EQ(DibClassify(picture), kModeGrey);
    ASSERT_TRUE(ReadView(picture).width == 676 && ReadView(picture).height == 476);

    const Tones tones = {676, 476, PixelsOf(picture)};
    ExpectNoSeam(tones);
    int32_t flat = 0, lit = 0, unlit = 0;
    for (int32_t y = 0; y < tones.height; y++) {
        for (int32_t x = 0; x < tones.width; x++) {
            flat += tones.At(x, y) == 127;
            // On the way down to the right a piece ends in the dark and the next one begins in the light.
            const int32_t before = tones.At(x - 3, y - 3) - 127, after = tones.At(x + 3, y + 3) - 127;
            lit += before < -20 && after > 20;
            unlit += before > 20 && after < -20;
        }
    }
    EXPECT_GT(flat, tones.width * tones.height / 2);
    EXPECT_GT(lit, 5000);
    EXPECT_LT(unlit, lit / 10);
}

TEST(Textures, AndReliefAreTheSameOnEveryMachine) {
    // Whoever draws them anew puts the new sums here; a compiler or a machine that does so has a fault.
    EXPECT_EQ(ChecksumOf(LockedDib(CanvasTextures())), 1581642733u);
    EXPECT_EQ(ChecksumOf(LockedDib(JigsawRelief())), 1079999855u);
}

TEST(Textures, AndReliefNeedMemory) {
    const int64_t blocks = LiveBlocks();
    FailAllocationAfter(0);
    EXPECT_EQ(CanvasTextures(), nullptr);
    EXPECT_EQ(JigsawRelief(), nullptr);
    FailAllocationAfter(-1);
    EXPECT_EQ(LiveBlocks(), blocks);
    EXPECT_EQ(LiveLocks(), 0);
}

} // namespace lmf::testing
