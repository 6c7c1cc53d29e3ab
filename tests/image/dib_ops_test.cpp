#include <gtest/gtest.h>

#include "image/dib_ops.h"
#include "support/pictures.h"

namespace lmf::testing {

static constexpr uint32_t kDepths[] = {1, 4, 8, 24, 32};

static DibOwner RandomDepth(int32_t width, int32_t height, uint32_t bits, uint32_t seed) {
    uint32_t state = seed + 1;
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) pixel = TestRandom(&state);
    return MakePicture(width, height, bits, pixels);
}

/// A picture whose header says 16 bits: reads white everywhere and takes no writes.
static DibOwner SixteenBits(int32_t width, int32_t height) {
    DibOwner picture(DibCreate(width, height, nullptr, 32));
    DibLock lock(picture.handle);
    reinterpret_cast<DibHeader *>(lock.image)->biBitCount = 16;
    return picture;
}

TEST(DibCropRect, CopiesInsideAndReadsAllOnesOutside) {
    struct Rect {
        int32_t left, top, right, bottom;
    };
    for (uint32_t bits : kDepths) {
        DibOwner picture = RandomDepth(7, 5, bits, 3);
        DibLock from(picture.handle);
        for (const Rect &rect : {Rect{0, 0, 7, 5}, Rect{2, 1, 5, 4}, Rect{-3, -2, 9, 8}, Rect{6, 4, 12, 5},
                                 Rect{-9, 0, -4, 3}, Rect{INT32_MAX - 2, 0, INT32_MAX, 2}}) {
            DibOwner cut(DibCropRect(picture.handle, rect.left, rect.top, rect.right, rect.bottom));
            DibLock to(cut.handle);
            ASSERT_TRUE(to);
            ASSERT_EQ(to.view.bits, bits);
            ASSERT_EQ(to.view.width, rect.right - rect.left);
            ASSERT_EQ(to.view.height, rect.bottom - rect.top);
            const uint32_t ones = bits == 32 ? kOutside : (1u << bits) - 1;
            for (int32_t y = 0; y < to.view.height; y++) {
                for (int32_t x = 0; x < to.view.width; x++) {
                    const uint32_t expected = DibGetPixel(from.image, rect.left + x, rect.top + y);
                    ASSERT_EQ(DibGetPixel(to.image, x, y), expected == kOutside ? ones : expected) << bits;
                }
            }
        }
    }
}

TEST(DibCropRect, RefusesEmptyTurnedAndGiganticRectangles) {
    DibOwner picture = RandomDepth(4, 4, 24, 1);
    EXPECT_EQ(DibCropRect(picture.handle, 2, 0, 2, 4), nullptr);
    EXPECT_EQ(DibCropRect(picture.handle, 3, 3, 1, 1), nullptr);
    EXPECT_EQ(DibCropRect(picture.handle, INT32_MIN, 0, INT32_MAX, 1), nullptr);
    EXPECT_EQ(DibCropRect(picture.handle, 0, INT32_MIN, 4, INT32_MAX), nullptr);
    EXPECT_EQ(DibCropRect(nullptr, 0, 0, 1, 1), nullptr);
}

TEST(DibFlips, ReverseRowsAndColumnsAtEveryDepth) {
    for (uint32_t bits : kDepths) {
        DibOwner picture = RandomDepth(11, 3, bits, 9);
        DibOwner vertical(DibFlipVertical(picture.handle)), horizontal(DibFlipHorizontal(picture.handle));
        DibLock from(picture.handle), v(vertical.handle), h(horizontal.handle);
        for (int32_t y = 0; y < 3; y++) {
            for (int32_t x = 0; x < 11; x++) {
                ASSERT_EQ(DibGetPixel(v.image, x, y), DibGetPixel(from.image, x, 2 - y)) << bits;
                ASSERT_EQ(DibGetPixel(h.image, x, y), DibGetPixel(from.image, 10 - x, y)) << bits;
            }
        }
        EXPECT_TRUE(SamePicture(DibOwner(DibFlipVertical(vertical.handle)).handle, picture.handle));
        EXPECT_TRUE(SamePicture(DibOwner(DibFlipHorizontal(horizontal.handle)).handle, picture.handle));
    }
}

TEST(DibFillRect, ClipsAndKeepsNeighbours) {
    for (uint32_t bits : kDepths) {
        DibOwner picture(DibCreate(9, 6, nullptr, bits));
        DibLock lock(picture.handle);
        EXPECT_EQ(DibFillRect(lock.image, 3, 4, INT32_MAX, INT32_MAX, kOutside), 1);
        DibFillRect(lock.image, -5, -5, 6, 7, kOutside);
        DibFillRect(lock.image, 0, 0, -4, 9, kOutside);
        DibFillRect(lock.image, 0, 0, 9, 0, kOutside);
        for (int32_t y = 0; y < 6; y++) {
            for (int32_t x = 0; x < 9; x++) {
                const bool filled = (x >= 3 && y >= 4) || (x < 1 && y < 2);
                ASSERT_EQ(DibGetPixel(lock.image, x, y) != 0, filled) << bits << " " << x << " " << y;
            }
        }
    }
}

TEST(DibFrameRect, DrawsFourBarsInsideTheBox) {
    DibOwner picture(DibCreate(8, 6, nullptr, 8));
    DibLock lock(picture.handle);
    EXPECT_EQ(DibFrameRect(lock.image, 1, 1, 6, 5, 7, 2), 1);
    EXPECT_EQ(PixelsOf(picture.handle), (std::vector<uint32_t>{
                                            0, 0, 0, 0, 0, 0, 0, 0, //
                                            0, 7, 7, 7, 7, 7, 7, 0, //
                                            0, 7, 7, 7, 7, 7, 7, 0, //
                                            0, 7, 7, 0, 0, 7, 7, 0, //
                                            0, 7, 7, 7, 7, 7, 7, 0, //
                                            0, 7, 7, 7, 7, 7, 7, 0, //
                                        }));
    DibOwner hostile(DibCreate(3, 3, nullptr, 24));
    DibLock target(hostile.handle);
    DibFrameRect(target.image, INT32_MAX, INT32_MAX, -5, 3, 1, 9);
    DibFrameRect(target.image, 0, 0, 3, 3, 1, -1);
    EXPECT_EQ(PixelsOf(hostile.handle), std::vector<uint32_t>(9, 0));
    DibFrameRect(target.image, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 1, INT32_MAX);
    DibFrameRect(target.image, 1, 1, 1, 1, 5, INT32_MAX);
    EXPECT_EQ(DibGetPixel(target.image, 1, 1), 5u);
}

TEST(DibCopyRect, CopiesOnlyWhereBothPicturesHavePixels) {
    struct Place {
        int32_t toX, toY, fromX, fromY, width, height;
    };
    for (uint32_t fromBits : kDepths) {
        for (uint32_t toBits : kDepths) {
            DibOwner source = RandomDepth(6, 5, fromBits, 4);
            DibLock from(source.handle);
            for (const Place &place :
                 {Place{1, 1, 0, 0, 3, 2}, Place{-2, -1, 1, 0, 6, 5}, Place{5, 2, -1, 3, 9, 9},
                  Place{0, 0, INT32_MIN, 0, INT32_MAX, 4}, Place{INT32_MAX, 0, 0, 0, INT32_MAX, INT32_MAX}}) {
                DibOwner target = RandomDepth(7, 4, toBits, 8), expected(DibClone(target.handle));
                DibLock to(target.handle), reference(expected.handle);
                for (int64_t y = 0; y < 4; y++) {
                    for (int64_t x = 0; x < 7; x++) {
                        const int64_t i = x - place.toX, k = y - place.toY;
                        const int64_t fromX = place.fromX + i, fromY = place.fromY + k;
                        if (i < 0 || i >= place.width || k < 0 || k >= place.height || fromX < 0 || fromX >= 6 ||
                            fromY < 0 || fromY >= 5)
                            continue;
                        DibSetPixel(reference.image, static_cast<int32_t>(x), static_cast<int32_t>(y),
                                    DibGetPixel(from.image, static_cast<int32_t>(fromX), static_cast<int32_t>(fromY)));
                    }
                }
                EXPECT_EQ(DibCopyRect(to.image, place.toX, place.toY, from.image, place.fromX, place.fromY, place.width,
                                      place.height),
                          1);
                EXPECT_TRUE(SamePicture(target.handle, expected.handle)) << fromBits << " to " << toBits;
            }
        }
    }
}

TEST(DibOps, SixteenBitPicturesReadWhite) {
    DibOwner odd = SixteenBits(3, 2);
    const std::vector<uint32_t> white(6, 0xFFFFFF);
    EXPECT_EQ(PixelsOf(DibOwner(DibCropRect(odd.handle, 0, 0, 3, 2)).handle), white);
    EXPECT_EQ(PixelsOf(DibOwner(DibFlipHorizontal(odd.handle)).handle), white);
    EXPECT_EQ(PixelsOf(DibOwner(DibFlipVertical(odd.handle)).handle).size(), 6u);
}

} // namespace lmf::testing
