// Median, Reduce noise and Despeckle against worked examples and against slow references that read pixels one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

#include "filters/noise/window_width.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

uint8_t Channel(Color color, int32_t channel) {
    return static_cast<uint8_t>(color >> 8 * channel);
}

/// Random pixels of all levels, of a few near ones, or of the extremes, so that ties and overflows occur.
DibOwner NoisyPicture(int32_t width, int32_t height, uint32_t seed, uint32_t bits = 24) {
    static constexpr uint8_t kFew[] = {99, 100, 100, 100, 101, 103};
    static constexpr uint8_t kExtremes[] = {0, 0, 1, 2, 253, 254, 255, 255};
    uint32_t state = seed * 2654435761u + 1;
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) {
        for (int32_t channel = 0; channel < 4; channel++) {
            const uint32_t draw = TestRandom(&state) >> 8;
            const uint32_t level = seed % 3 == 0 ? draw & 255 : seed % 3 == 1 ? kFew[draw % 6] : kExtremes[draw % 8];
            pixel = pixel << 8 | level;
        }
    }
    return MakePicture(width, height, bits, pixels);
}

template <typename ChannelRule>
std::vector<uint32_t> EveryChannel(DibHandle picture, ChannelRule rule) {
    std::vector<uint32_t> pixels;
    DibLock lock(picture);
    for (int32_t y = 0; y < lock.view.height; y++) {
        for (int32_t x = 0; x < lock.view.width; x++)
            pixels.push_back(PackColor(rule(lock, x, y, 0), rule(lock, x, y, 1), rule(lock, x, y, 2)));
    }
    return pixels;
}

std::vector<uint32_t> SlowMedian(DibHandle picture, int32_t n) {
    return EveryChannel(picture, [n](const DibLock &lock, int32_t x, int32_t y, int32_t channel) {
        std::vector<uint8_t> values;
        for (int32_t j = 0; j < n; j++) {
            for (int32_t i = 0; i < n; i++) values.push_back(Channel(DibGetPixel(lock.image, x + i, y + j), channel));
        }
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    });
}

std::vector<uint32_t> SlowReduceNoise(DibHandle picture, int32_t n) {
    return EveryChannel(picture, [n](const DibLock &lock, int32_t x, int32_t y, int32_t channel) {
        std::map<uint8_t, int32_t> counts;
        for (int32_t i = 0; i < n; i++) counts[Channel(DibGetPixel(lock.image, x + i, y), channel)] += n;
        auto middle = counts.begin();
        for (int32_t sum = middle->second; sum <= n * n / 2; sum += middle->second) ++middle;
        const bool lowest = middle == counts.begin(), highest = std::next(middle) == counts.end();
        if (lowest && !highest) ++middle;
        if (highest && !lowest) --middle;
        return middle->first;
    });
}

/// A channel with a frame of zeros, rows as they lie in memory, moved as the method was published: a whole picture a
/// pass.
struct SlowHull {
    int32_t width, height;
    std::vector<uint8_t> f, g;

    void Run(int32_t o, int32_t polarity) {
        const auto eachInner = [this](auto work) {
            for (int32_t y = 1; y <= height; y++) {
                for (int32_t x = 1; x <= width; x++) work(y * (width + 2) + x);
            }
        };
        const auto at = [](std::vector<uint8_t> &plane, int32_t p) -> uint8_t & { return plane[size_t(p)]; };
        const auto up = [](uint8_t level) { return static_cast<uint8_t>(level + 1); };
        eachInner([&](int32_t p) {
            const uint8_t v = at(f, p), ahead = at(f, p + o);
            at(g, p) = v;
            if (polarity > 0 && ahead > v) at(g, p)++;
            if (polarity < 0 && v > up(ahead)) at(g, p)--;
        });
        eachInner([&](int32_t p) {
            const uint8_t v = at(g, p), ahead = at(g, p + o), behind = at(g, p - o);
            at(f, p) = v;
            if (polarity > 0 && v < up(behind) && ahead > v) at(f, p)++;
            if (polarity < 0 && up(behind) < v && ahead < v) at(f, p)--;
        });
    }
};

std::vector<uint32_t> SlowDespeckle(DibHandle picture) {
    DibLock lock(picture);
    const int32_t width = lock.view.width, height = lock.view.height;
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int32_t channel = 0; channel < 3; channel++) {
        const size_t cells = static_cast<size_t>(width + 2) * static_cast<size_t>(height + 2);
        SlowHull hull{width, height, std::vector<uint8_t>(cells), std::vector<uint8_t>(cells)};
        const auto cell = [&](int32_t x, int32_t y) { return static_cast<size_t>((height - y) * (width + 2) + x + 1); };
        for (int32_t y = 0; y < height; y++) {
            for (int32_t x = 0; x < width; x++) hull.f[cell(x, y)] = Channel(DibGetPixel(lock.image, x, y), channel);
        }
        for (int32_t o : {width + 2, 1, width + 3, width + 1}) {
            hull.Run(o, 1);
            hull.Run(-o, 1);
            hull.Run(-o, -1);
            hull.Run(o, -1);
        }
        for (int32_t y = 0; y < height; y++) {
            for (int32_t x = 0; x < width; x++)
                pixels[static_cast<size_t>(y * width + x)] |= static_cast<uint32_t>(hull.f[cell(x, y)]) << 8 * channel;
        }
    }
    return pixels;
}

struct Case {
    int32_t width, height;
    uint32_t bits;
};
constexpr Case kCases[] = {{1, 1, 24},    {1, 9, 24},     {9, 1, 24},   {3, 3, 24},   {5, 4, 24},
                           {7, 7, 24},    {11, 11, 24},   {12, 8, 24},  {21, 13, 24}, {64, 20, 24},
                           {171, 33, 24}, {200, 200, 24}, {13, 12, 32}, {1, 2, 32}};

} // namespace

TEST(WindowWidth, RoundsTheRadiusUpOrFollowsSigma) {
    struct {
        double radius, sigma;
        int32_t width;
    } const cases[] = {{0.2, 0.5, 3}, {1.0, 0.5, 3}, {1.01, 0.5, 5}, {3.0, 0.5, 7},
                       {0, 0.5, 3},   {0, 1.0, 7},   {-1, 2.0, 11}};
    for (const auto &c : cases) EXPECT_EQ(WindowWidth(c.radius, c.sigma), c.width) << c.radius << " " << c.sigma;
}

TEST(Median, AgreesWithSortingEachWindow) {
    uint32_t seed = 0;
    for (const Case &c : kCases) {
        for (int32_t radius : {100, 101, 200, 300, 301}) {
            DibOwner picture = NoisyPicture(c.width, c.height, seed++, c.bits);
            FilterContext context = MakeContext();
            context.FilterMedianRadius = radius;
            DibOwner result = RunKernel("Median", picture.handle, &context);
            const int32_t n = (radius + 99) / 100 * 2 + 1;
            ASSERT_EQ(bool(result), std::min(c.width, c.height) >= n);
            if (!result) continue;
            ASSERT_EQ(PixelsOf(result.handle), SlowMedian(picture.handle, n)) << c.width << " " << radius;
        }
    }
}

TEST(Median, WindowHangsBelowAndRightOfThePixelOverWhite) {
    std::vector<uint32_t> dot(9, 0x102030);
    DibOwner picture = MakePicture(3, 3, 24, dot);
    FilterContext context = MakeContext();
    context.FilterMedianRadius = 100;
    constexpr uint32_t kKept = 0x102030, kWhite = 0xFFFFFF;
    EXPECT_EQ(PixelsOf(RunKernel("Median", picture.handle, &context).handle),
              (std::vector<uint32_t>{kKept, kKept, kWhite, kKept, kWhite, kWhite, kWhite, kWhite, kWhite}));
}

TEST(ReduceNoise, AgreesWithCountingEachWindow) {
    uint32_t seed = 0;
    for (const Case &c : kCases) {
        for (int32_t radius : {2, 10, 15, 30, 31, 50, 51, 95}) {
            DibOwner picture = NoisyPicture(c.width, c.height, seed++, c.bits);
            FilterContext context = MakeContext();
            context.Filter_ReduceNoiseRadius = radius;
            DibOwner result = RunKernel("Reduce noise", picture.handle, &context);
            const int32_t n = (radius + 9) / 10 * 2 + 1;
            ASSERT_EQ(bool(result), std::min(c.width, c.height) >= n);
            if (!result) continue;
            ASSERT_EQ(PixelsOf(result.handle), SlowReduceNoise(picture.handle, n)) << c.width << " " << n;
        }
    }
}

TEST(ReduceNoise, OfTwoValuesTheRarerIsTaken) {
    DibOwner picture = MakePicture(3, 3, 24, {10, 10, 20, 20, 20, 10, 30, 30, 30});
    FilterContext context = MakeContext();
    context.Filter_ReduceNoiseRadius = 10;
    const std::vector<uint32_t> pixels = PixelsOf(RunKernel("Reduce noise", picture.handle, &context).handle);
    EXPECT_EQ(RedOf(pixels[0]), 20);
    EXPECT_EQ(RedOf(pixels[3]), 10);
    EXPECT_EQ(RedOf(pixels[6]), 30);
}

TEST(Despeckle, AgreesWithWholePicturePasses) {
    uint32_t seed = 0;
    for (const Case &c : kCases) {
        for (int32_t i = 0; i < 3; i++) {
            DibOwner picture = NoisyPicture(c.width, c.height, seed++, c.bits);
            DibOwner result = RunKernel("Despeckle", picture.handle);
            ASSERT_EQ(PixelsOf(result.handle), SlowDespeckle(picture.handle)) << c.width << "x" << c.height;
        }
    }
}

TEST(Despeckle, LiftsASpeckAndLeavesTheFlatInside) {
    std::vector<uint32_t> flat(21 * 21, 0x646464);
    DibOwner picture = MakePicture(21, 21, 24, flat);
    const std::vector<uint32_t> plain = PixelsOf(RunKernel("Despeckle", picture.handle).handle);
    EXPECT_EQ(plain[10 * 21 + 10], 0x646464u);
    EXPECT_LT(plain[0], 0x646464u);
    flat[10 * 21 + 10] = 0;
    picture = MakePicture(21, 21, 24, flat);
    EXPECT_GT(RedOf(PixelsOf(RunKernel("Despeckle", picture.handle).handle)[10 * 21 + 10]), 0);
}

} // namespace lmf::testing
