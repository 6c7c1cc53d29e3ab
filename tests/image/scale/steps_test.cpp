#include "image/scale/steps.h"

#include "image/geometry/turns.h"
#include "image/scale/nearest.h"
#include "support/pictures.h"

namespace lmf::testing {
namespace {

/// One channel of a line, shrunk.
Pixels ShrunkLine(const Pixels &from, size_t newSize, size_t percent) {
    Pixels line(newSize);
    for (size_t i = 0, next = 0; i < newSize; i++) {
        uint32_t sum = 0, count = 0;
        for (; next < 100 * (i + 1) / percent && next < from.size(); next++, count++) sum += from[next];
        line[i] = sum / std::max(count, 1u);
    }
    return line;
}

Pixels EnlargedLine(const Pixels &from, size_t newSize, size_t percent) {
    const size_t step = percent + percent / 100 + (percent % 100 != 0);
    Pixels line(newSize + 2 * step);
    line[0] = from[0];
    for (size_t s = 1, previous = 0; s < from.size(); s++) {
        const size_t end = s * step / 100;
        const auto run = static_cast<uint32_t>(end - previous);
        line.resize(std::max(line.size(), end + 1));
        for (uint32_t k = 0; k < run; k++)
            line[previous + k] = (run - 1 - k) * from[s - 1] / run + (k + 1) * from[s] / run;
        line[end] = from[s];
        previous = end;
    }
    line[newSize - 1] = from.back();
    return line;
}

/// The same height, another width.
LockedDib ReferenceSteps(const ReadView &source, int32_t percent) {
    const ReadView &from = source;
    const int32_t newWidth = from.width * percent / 100;
    std::vector<Pixels> stepped; // three channels a line
    for (int32_t i = 0; i < from.height * 3; i++) {
        Pixels line;
        for (int32_t x = 0; x < from.width; x++) line.push_back(DibGetPixel(from, x, i / 3) >> i % 3 * 8 & 255);
        stepped.push_back((percent < 100 ? ShrunkLine : EnlargedLine)(line, static_cast<size_t>(newWidth),
                                                                      static_cast<size_t>(percent)));
    }
    const LockedDib size(DibCreateLike(from, newWidth, from.height));
    return PictureLike(size, [&](int32_t x, int32_t y) {
        const Pixels *line = &stepped[static_cast<size_t>(y) * 3];
        const auto at = static_cast<size_t>(x);
        return PackColor(line[0][at], line[1][at], line[2][at]);
    });
}

} // namespace

TEST(Steps, AgreeWithSteppingLineByLine) {
    for (int32_t percent : {1, 7, 25, 33, 50, 66, 99, 101, 150, 199, 200, 333, 400, 1234}) {
        for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
            for (int32_t side : {1, 2, 5, 101, 230}) {
                SCOPED_TRACE(std::to_string(side) + " at " + std::to_string(percent));
                const bool shrinks = percent < 100;
                const LockedDib wide = RandomPicture(side, 3, mode, 9), tall(DibTurnClockwise(wide));
                const LockedDib columns((shrinks ? DibShrinkHorz : DibEnlargeHorz)(wide, percent));
                const LockedDib rows((shrinks ? DibShrinkVert : DibEnlargeVert)(tall, percent));
                ASSERT_EQ(columns && rows, side * percent >= 100);
                if (!columns) continue;
                const LockedDib expected = ReferenceSteps(wide, percent);
                ASSERT_TRUE(SamePicture(columns, expected));
                ASSERT_TRUE(SamePicture(rows, LockedDib(DibTurnClockwise(expected))));
            }
        }
    }
}

TEST(Steps, OtherDepths) {
    LockedDib deep = MakePicture(2, 2, 32, {0x80102030, 0x80102030, 0x80304050, 0x80304050});
    EXPECT_EQ(PixelsOf(LockedDib(DibShrinkVert(deep, 50))), (Pixels{0x203040, 0x203040}));
    // Six bytes of the row are two pixels of three bytes: 10 20 30 and 80 10 20.
    EXPECT_EQ(PixelsOf(LockedDib(DibShrinkHorz(deep, 50))), (Pixels{0x481828, 0x583848}));
    EXPECT_EQ(PixelsOf(LockedDib(DibEnlargeVert(deep, 150))), Pixels(6, 0x304050));
    LockedDib nibbles = MakePicture(2, 1, 4, {4, 9});
    EXPECT_EQ(PixelsOf(LockedDib(DibShrinkHorz(nibbles, 50))), (Pixels{6}));
    // Both rows hold one whole triple of bytes, so the shares end with the first.
    const LockedDib fewBits = RandomDepth(20, 1, 1, 7);
    Pixels firstBits = PixelsOf(fewBits);
    firstBits.resize(10);
    EXPECT_EQ(PixelsOf(LockedDib(DibShrinkHorz(fewBits, 50))), firstBits);
    EXPECT_EQ(PixelsOf(LockedDib(DibEnlargeHorz(nibbles, 200))), (Pixels{6, 9, 9, 9}));
    // 64 bits are 8 bytes and hold two triples, of which the one that 32 bits have room for is the mean.
    LockedDib bits(DibCreate(64, 1, nullptr, 1));
    for (uint8_t i = 0; i < 8; i++) bits.View().Row(0)[i] = static_cast<uint8_t>(i * 20 + 1);
    const LockedDib halved(DibShrinkHorz(bits, 50));
    const uint8_t *row = halved.View().Row(0);
    EXPECT_EQ(Pixels(row, row + 4), (Pixels{31, 51, 71, 0}));
}

TEST(Steps, BothAxes) {
    LockedDib source = RandomPicture(17, 13, kModeTrueColor, 4);
    const LockedDib wide(DibEnlargeHorz(source, 250));
    EXPECT_TRUE(SamePicture(LockedDib(DibScaleSteps(source, 250, 40)), LockedDib(DibShrinkVert(wide, 40))));
    EXPECT_TRUE(SamePicture(LockedDib(DibScaleSteps(source, 100, 100)), source));
    EXPECT_FALSE(DibScaleSteps(source, 100, 7) || DibScaleSteps(source, 0, 100));
}

TEST(Nearest, PicksTheSamplesOfARunningSum) {
    for (uint32_t bits : {1u, 4u, 8u, 24u}) {
        const LockedDib source = RandomDepth(7, 5, bits, bits);
        for (const auto &[percentX, percentY] : {std::pair{150, 230}, {60, 45}, {100, 100}}) {
            const LockedDib scaled(DibScaleNearest(source, percentX, percentY));
            const int32_t width = percentX * 7 / 100, height = percentY * 5 / 100;
            ASSERT_TRUE(scaled.View().width == width && scaled.View().height == height);
            double row = 0.0;
            for (int32_t y = height - 1; y >= 0; y--, row += 5.0 / height) {
                double column = 0.0;
                for (int32_t x = 0; x < width; x++, column += 7.0 / width)
                    ASSERT_EQ(DibGetPixel(scaled, x, y),
                              DibGetPixel(source, static_cast<int32_t>(column), 4 - static_cast<int32_t>(row)));
            }
        }
        EXPECT_EQ(DibScaleNearest(source, 100, 19), nullptr);
    }
}

TEST(Nearest, DeepPicturesFillThreeQuartersOfTheirRows) {
    LockedDib deep = MakePicture(4, 1, 32, {0x11223344, 0x55667788, 0x99AABBCC, 0xDDEEFF01});
    EXPECT_EQ(PixelsOf(LockedDib(DibScaleNearest(deep, 100, 100))), (Pixels{0x11223344, 0x55667788, 0x99AABBCC, 0}));
}

} // namespace lmf::testing
