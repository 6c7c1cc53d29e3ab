#include "image/core/dib_ops.h"
#include "support/pictures.h"

namespace lmf::testing {

static constexpr uint32_t kDepths[] = {1, 4, 8, 24, 32};
static constexpr auto OnesOf = [](uint32_t bits) { return kOutside >> (32 - bits); };

TEST(DibCropRect, CopiesInsideAndReadsAllOnesOutside) {
    static constexpr int32_t kRects[][4] = {{0, 0, 7, 5},  {2, 1, 5, 4},   {-3, -2, 9, 8},
                                            {6, 4, 12, 5}, {-9, 0, -4, 3}, {INT32_MAX - 2, 0, INT32_MAX, 2}};
    for (uint32_t bits : kDepths) {
        const LockedDib picture = RandomDepth(7, 5, bits, 3);
        for (const auto &[left, top, right, bottom] : kRects) {
            const LockedDib cut(DibCropRect(picture, left, top, right, bottom));
            ASSERT_TRUE(cut);
            const ReadView to = cut;
            ASSERT_TRUE(to.bits == bits && to.width == right - left && to.height == bottom - top);
            ExpectPixels(cut, [&, left = left, top = top](int32_t x, int32_t y) {
                const uint32_t pixel = DibGetPixel(picture, left + x, top + y);
                return pixel == kOutside ? OnesOf(bits) : pixel;
            });
        }
    }
}

TEST(DibCropRect, RefusesEmptyTurnedAndGiganticRectangles) {
    LockedDib picture = RandomDepth(4, 4, 24, 1);
    EXPECT_EQ(DibCropRect(picture, 2, 0, 2, 4), nullptr);
    EXPECT_EQ(DibCropRect(picture, 3, 3, 1, 1), nullptr);
    EXPECT_EQ(DibCropRect(picture, INT32_MIN, 0, INT32_MAX, 1), nullptr);
    EXPECT_EQ(DibCropRect(picture, 0, INT32_MIN, 4, INT32_MAX), nullptr);
}

TEST(DibFlips, ReverseRowsAndColumnsAtEveryDepth) {
    for (uint32_t bits : kDepths) {
        LockedDib picture = RandomDepth(11, 3, bits, 9);
        const LockedDib vertical(DibFlipVertical(picture)), horizontal(DibFlipHorizontal(picture));
        ExpectPixels(vertical, [&](int32_t x, int32_t y) { return DibGetPixel(picture, x, 2 - y); });
        ExpectPixels(horizontal, [&](int32_t x, int32_t y) { return DibGetPixel(picture, 10 - x, y); });
    }
}

TEST(DibFillRect, ClipsAndKeepsNeighbours) {
    for (uint32_t bits : kDepths) {
        LockedDib picture(DibCreate(9, 6, nullptr, bits));
        const WriteView &lock = picture.View();
        DibFillRect(lock, 3, 4, INT32_MAX, INT32_MAX, kOutside);
        DibFillRect(lock, -5, -5, 6, 7, kOutside);
        DibFillRect(lock, 0, 0, -4, 9, kOutside);
        DibFillRect(lock, 0, 0, 9, 0, kOutside);
        ExpectPixels(picture,
                     [&](int32_t x, int32_t y) { return (x >= 3 && y >= 4) || (x < 1 && y < 2) ? OnesOf(bits) : 0; });
    }
}

TEST(DibFillAround, SparesTheRectangleWhereverItLies) {
    static constexpr int32_t kCases[][4] = {
        {2, 1, 4, 3},  {-3, -2, 6, 5}, {5, 4, 99, 99}, {0, 0, 9, 7},  {3, 2, 0, 5},
        {20, 1, 4, 4}, {1, -9, 3, 4},  {-9, 30, 2, 2}, {1, 1, -4, 2}, {INT32_MAX, INT32_MIN, INT32_MAX, INT32_MAX}};
    for (const auto &[left, top, width, height] : kCases) {
        const LockedDib picture = MakePicture(9, 7, 4);
        DibFillAround(picture.View(), left, top, width, height, 5);
        ExpectPixels(picture, [&, left = left, top = top, width = width, height = height](int64_t x, int64_t y) {
            const bool inside = x >= left && x < int64_t{left} + width && y >= top && y < int64_t{top} + height;
            return inside ? 0u : 5u;
        });
    }
}

TEST(DibFrameRect, DrawsFourBarsInsideTheBox) {
    LockedDib picture(DibCreate(8, 6, nullptr, 8));
    const WriteView &lock = picture.View();
    DibFrameRect(lock, 1, 1, 6, 5, 7, 2);
    ExpectPixels(picture, [](int32_t x, int32_t y) {
        const bool inBox = x >= 1 && x < 7 && y >= 1 && y < 6, inHole = x >= 3 && x < 5 && y == 3;
        return inBox && !inHole ? 7u : 0u;
    });
    DibFrameRect(lock, INT32_MAX, INT32_MAX, -5, 3, 1, 9);
    DibFrameRect(lock, 0, 0, 3, 3, 1, -1);
    EXPECT_EQ(DibGetPixel(lock, 0, 0), 0u);
    DibFrameRect(lock, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 1, INT32_MAX);
    DibFrameRect(lock, 3, 3, 1, 1, 5, INT32_MAX);
    EXPECT_EQ(DibGetPixel(lock, 3, 3), 5u);
}

TEST(DibCopyRect, CopiesOnlyWhereBothPicturesHavePixels) {
    struct Place {
        int32_t toX, toY, fromX, fromY, width, height;
    };
    for (uint32_t fromBits : kDepths) {
        for (uint32_t toBits : kDepths) {
            const LockedDib from = RandomDepth(6, 5, fromBits, 4);
            for (const Place &place :
                 {Place{1, 1, 0, 0, 3, 2}, Place{-2, -1, 1, 0, 6, 5}, Place{5, 2, -1, 3, 9, 9},
                  Place{0, 0, INT32_MIN, 0, INT32_MAX, 4}, Place{INT32_MAX, 0, 0, 0, INT32_MAX, INT32_MAX}}) {
                const LockedDib target = RandomDepth(7, 4, toBits, 8);
                const WriteView &to = target.View();
                const LockedDib expected = PictureLike(target, [&](int64_t x, int64_t y) {
                    const int64_t i = x - place.toX, k = y - place.toY;
                    const int64_t fromX = place.fromX + i, fromY = place.fromY + k;
                    const bool within = i >= 0 && i < place.width && k >= 0 && k < place.height;
                    const bool there = fromX >= 0 && fromX < 6 && fromY >= 0 && fromY < 5;
                    return within && there ? DibGetPixel(from, int32_t(fromX), int32_t(fromY))
                                           : DibGetPixel(to, int32_t(x), int32_t(y));
                });
                DibCopyRect(to, place.toX, place.toY, from, place.fromX, place.fromY, place.width, place.height);
                EXPECT_TRUE(SamePicture(target, expected)) << fromBits << " to " << toBits;
            }
        }
    }
}

TEST(DibConversions, AgreeWithTheArithmeticPixelByPixel) {
    // Wide enough for whole vectors and a rest.
    const int32_t width = 301, height = 3;
    const Color paper = 0x20C0F1;
    for (uint32_t bits : {24u, 32u}) {
        const LockedDib picture = RandomDepth(width, height, bits, 6);
        const auto pixel = [&](int32_t x, int32_t y) { return DibGetPixel(picture, x, y); };
        ExpectPixels(LockedDib(DibToGrey(picture)),
                     [&](int32_t x, int32_t y) { return static_cast<uint32_t>(WeightedGrey(pixel(x, y) & 0xFFFFFF)); });
        ExpectPixels(LockedDib(DibToRgb(picture)), [&](int32_t x, int32_t y) { return pixel(x, y) & 0xFFFFFF; });
        ExpectPixels(LockedDib(DibAlphaToGrey(picture)), [&](int32_t x, int32_t y) { return pixel(x, y) >> 24; });
        ExpectPixels(LockedDib(DibFlattenOnColor(picture, paper)),
                     [&](int32_t x, int32_t y) { return MixBytes(paper, pixel(x, y), pixel(x, y) >> 24); });
        ExpectPixels(LockedDib(DibColorize(picture, paper, 0x804001)),
                     [&](int32_t x, int32_t y) { return MixBytes(paper, 0x804001, pixel(x, y) & 255); });
        for (uint32_t maskBits : kDepths) {
            // Smaller than the picture: outside, the mask counts as full.
            const LockedDib mask = RandomDepth(maskBits == 8 ? width : width - 9, height - 1, maskBits, 2);
            const LockedDib tinted(DibTintByMask(picture, mask, paper));
            ASSERT_EQ(!tinted, bits == 32);
            if (tinted)
                ExpectPixels(tinted, [&](int32_t x, int32_t y) {
                    return MixBytes(pixel(x, y), paper, DibGetPixel(mask, x, y) & 255);
                });
        }
    }
}

TEST(DibConversions, IndexedPicturesGoThroughTheirTable) {
    const Palette768 palette{{200, 1, 2, 0, 0, 255, 7, 8, 9}};
    for (uint32_t bits : {4u, 8u}) {
        LockedDib picture = MakePalettePicture(3, 1, bits, palette, {0, 1, 2});
        EXPECT_EQ(PixelsOf(LockedDib(DibToRgb(picture))), (Pixels{0x0201C8, 0xFF0000, 0x090807}));
        // The red byte alone: pure blue is black.
        EXPECT_EQ(PixelsOf(LockedDib(DibToGrey(picture))), (Pixels{200, 0, 7}));
        EXPECT_EQ(PixelsOf(LockedDib(DibAlphaToGrey(picture))), Pixels(3, 0));
    }
    LockedDib mono = MakePalettePicture(2, 1, 1, palette, {0, 1});
    EXPECT_EQ(DibClassify(mono), kModeMono);
    EXPECT_EQ(PixelsOf(LockedDib(DibToRgb(mono))), (Pixels{0, 0xFFFFFF}));
    EXPECT_EQ(PixelsOf(LockedDib(DibToGrey(mono))), (Pixels{200, 0}));
}

TEST(DibAdjustHsv, TurnsScalesAndKeepsAlpha) {
    LockedDib picture = MakePicture(3, 1, 32, {0x800000FF, 0x80000000, 0x40204060});
    EXPECT_EQ(PixelsOf(LockedDib(DibAdjustHsv(picture, 120, 1, 1)))[0], 0x8000FF00u);
    EXPECT_EQ(PixelsOf(LockedDib(DibAdjustHsv(picture, 0, 0, 0.5f))), (Pixels{0x807F7F7F, 0x80000000, 0x40303030}));
    // Not wrapped: red turned back by 60 degrees stands in the last sector, at its start.
    EXPECT_EQ(PixelsOf(LockedDib(DibAdjustHsv(picture, -60, 1, 1)))[0], 0x80FF00FFu);
}

TEST(DibOps, SixteenBitPicturesReadWhite) {
    const DibOwner odd(DibCreate(3, 2, nullptr, 32));
    static_cast<DibHeader *>(BlockLock(odd.handle))->biBitCount = 16;
    BlockUnlock(odd.handle);
    const DibReadLock lock(odd.handle);
    const Pixels white(6, 0xFFFFFF);
    EXPECT_EQ(PixelsOf(LockedDib(DibCropRect(lock.view, 0, 0, 3, 2))), white);
    EXPECT_EQ(PixelsOf(LockedDib(DibFlipHorizontal(lock.view))), white);
    EXPECT_EQ(PixelsOf(LockedDib(DibFlipVertical(lock.view))).size(), 6u);
    EXPECT_EQ(PixelsOf(LockedDib(DibToRgb(lock.view))), white);
    EXPECT_EQ(PixelsOf(LockedDib(DibToGrey(lock.view))), Pixels(6, 255));
}

} // namespace lmf::testing
