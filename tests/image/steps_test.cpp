#include "image/steps.h"

#include <gtest/gtest.h>

#include "image/nearest.h"
#include "support/pictures.h"

namespace lmf::testing {

static uint32_t PixelAlong(const DibLock &picture, bool vertical, int32_t along, int32_t across) {
    return vertical ? DibGetPixel(picture.image, across, along) : DibGetPixel(picture.image, along, across);
}

static DibOwner ReferenceSteps(DibHandle source, bool vertical, int32_t percent) {
    DibLock from(source);
    const int32_t width = from.view.width, height = from.view.height;
    const int32_t size = vertical ? height : width, lines = vertical ? width : height;
    const int32_t newSize = size * percent / 100;
    DibOwner result(vertical ? DibCreate(width, newSize, &GreyRamp(), from.view.bits)
                             : DibCreate(newSize, height, &GreyRamp(), from.view.bits));
    DibLock to(result.handle);
    const int32_t step = percent + percent / 100 + (percent % 100 != 0);
    for (int32_t line = 0; line < lines; line++) {
        std::vector<uint32_t> values(static_cast<size_t>(newSize));
        for (int32_t shift = 0; shift < 24; shift += 8) {
            const auto sample = [&](int32_t i) { return PixelAlong(from, vertical, i, line) >> shift & 0xFF; };
            std::vector<uint32_t> channel(values.size());
            const auto put = [&](int32_t i, uint32_t value) {
                if (i < newSize) channel[static_cast<size_t>(i)] = value;
            };
            if (percent < 100) {
                for (int32_t i = 0, next = 0; i < newSize; i++) {
                    uint32_t sum = 0, count = 0;
                    for (; next < 100 * (i + 1) / percent && next < size; next++, count++) sum += sample(next);
                    put(i, sum / std::max(count, 1u));
                }
            } else {
                put(0, sample(0));
                for (int32_t s = 1, previous = 0; s < size; s++) {
                    const int32_t end = s * step / 100;
                    const auto run = static_cast<uint32_t>(end - previous);
                    for (uint32_t k = 0; k < run; k++)
                        put(previous + static_cast<int32_t>(k),
                            (run - 1 - k) * sample(s - 1) / run + (k + 1) * sample(s) / run);
                    put(end, sample(s));
                    previous = end;
                }
                put(newSize - 1, sample(size - 1));
            }
            for (size_t i = 0; i < values.size(); i++) values[i] |= channel[i] << shift;
        }
        for (int32_t i = 0; i < newSize; i++)
            DibSetPixel(to.image, vertical ? line : i, vertical ? i : line, values[static_cast<size_t>(i)]);
    }
    to.Unlock();
    return result;
}

TEST(Steps, IsBitForBitThePlainRoad) {
    for (int32_t percent : {1, 7, 25, 33, 50, 66, 99, 101, 150, 199, 200, 333, 400, 1234}) {
        for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
            for (int32_t side : {1, 2, 5, 101, 230}) {
                DibOwner wide = RandomPicture(side, 3, mode, 9), tall = RandomPicture(3, side, mode, 9);
                DibOwner columns(percent < 100 ? DibShrinkHorz(wide.handle, percent)
                                               : DibEnlargeHorz(wide.handle, percent));
                DibOwner rows(percent < 100 ? DibShrinkVert(tall.handle, percent)
                                            : DibEnlargeVert(tall.handle, percent));
                if (side * percent < 100) {
                    EXPECT_FALSE(columns || rows) << "nothing is left of " << side << " at " << percent;
                    continue;
                }
                ASSERT_TRUE(SamePicture(columns.handle, ReferenceSteps(wide.handle, false, percent).handle))
                    << side << " at " << percent;
                ASSERT_TRUE(SamePicture(rows.handle, ReferenceSteps(tall.handle, true, percent).handle))
                    << side << " at " << percent;
            }
        }
    }
}

TEST(Steps, WorkedByHand) {
    DibOwner source = MakePicture(5, 1, 8, {10, 20, 31, 40, 255});
    EXPECT_EQ(PixelsOf(DibOwner(DibShrinkHorz(source.handle, 40)).handle), (std::vector<uint32_t>{15, 108}));
    DibOwner pair = MakePicture(2, 1, 8, {10, 21});
    // A run of two positions: 10 / 2 + 21 / 2, then 0 / 2 + 42 / 2; then the sample itself, and the last one over it.
    EXPECT_EQ(PixelsOf(DibOwner(DibEnlargeHorz(pair.handle, 200)).handle), (std::vector<uint32_t>{15, 21, 21, 21}));
}

TEST(Steps, OtherDepths) {
    DibOwner deep = MakePicture(2, 2, 32, {0x80102030, 0x80102030, 0x80304050, 0x80304050});
    EXPECT_EQ(PixelsOf(DibOwner(DibShrinkVert(deep.handle, 50)).handle), (std::vector<uint32_t>{0x203040, 0x203040}));
    // Six bytes of the row are two pixels of three bytes: 10 20 30 and 80 10 20.
    EXPECT_EQ(PixelsOf(DibOwner(DibShrinkHorz(deep.handle, 50)).handle), (std::vector<uint32_t>{0x481828, 0x583848}));
    EXPECT_EQ(PixelsOf(DibOwner(DibEnlargeVert(deep.handle, 150)).handle),
              (std::vector<uint32_t>{0x304050, 0x304050, 0x304050, 0x304050, 0x304050, 0x304050}));
    DibOwner nibbles = MakePicture(2, 1, 4, {4, 9});
    EXPECT_EQ(PixelsOf(DibOwner(DibShrinkHorz(nibbles.handle, 50)).handle), (std::vector<uint32_t>{6}));
}

TEST(Steps, BothAxes) {
    DibOwner source = RandomPicture(17, 13, kModeTrueColor, 4);
    DibOwner mixed(DibScaleSteps(source.handle, 250, 40));
    DibOwner wide(DibEnlargeHorz(source.handle, 250));
    EXPECT_TRUE(SamePicture(mixed.handle, DibOwner(DibShrinkVert(wide.handle, 40)).handle));
    EXPECT_TRUE(SamePicture(DibOwner(DibScaleSteps(source.handle, 100, 100)).handle, source.handle));
    EXPECT_EQ(DibScaleSteps(source.handle, 100, 7), nullptr);
    EXPECT_EQ(DibScaleSteps(source.handle, 0, 100), nullptr);
}

TEST(Nearest, PicksTheSamplesOfARunningSum) {
    for (uint32_t bits : {1u, 4u, 8u, 24u}) {
        std::vector<uint32_t> pixels(7 * 5);
        uint32_t seed = bits;
        for (uint32_t &pixel : pixels) pixel = TestRandom(&seed) >> 3 & (bits == 24 ? 0xFFFFFF : (1u << bits) - 1);
        DibOwner source = MakePicture(7, 5, bits, pixels);
        for (const auto &[percentX, percentY] : {std::pair{150, 230}, {60, 45}, {100, 100}}) {
            DibOwner scaled(DibScaleNearest(source.handle, percentX, percentY));
            DibLock lock(scaled.handle);
            ASSERT_EQ(lock.view.width, percentX * 7 / 100);
            ASSERT_EQ(lock.view.height, percentY * 5 / 100);
            double rowSum = 0.0;
            for (int32_t up = 0; up < lock.view.height; up++, rowSum += 5.0 / lock.view.height) {
                double columnSum = 0.0;
                for (int32_t x = 0; x < lock.view.width; x++, columnSum += 7.0 / lock.view.width) {
                    const size_t at =
                        static_cast<size_t>(4 - static_cast<int32_t>(rowSum)) * 7 + static_cast<size_t>(columnSum);
                    ASSERT_EQ(DibGetPixel(lock.image, x, lock.view.height - 1 - up), pixels[at]) << bits;
                }
            }
        }
        EXPECT_EQ(DibScaleNearest(source.handle, 100, 19), nullptr);
    }
}

TEST(Nearest, DeepPicturesFillThreeQuartersOfTheirRows) {
    DibOwner deep = MakePicture(4, 1, 32, {0x11223344, 0x55667788, 0x99AABBCC, 0xDDEEFF01});
    EXPECT_EQ(PixelsOf(DibOwner(DibScaleNearest(deep.handle, 100, 100)).handle),
              (std::vector<uint32_t>{0x11223344, 0x55667788, 0x99AABBCC, 0}));
}

} // namespace lmf::testing
