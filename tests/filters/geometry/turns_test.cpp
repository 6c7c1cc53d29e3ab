#include "filters/geometry/turns.h"

#include <gtest/gtest.h>

#include "support/pictures.h"

namespace lmf::testing {

TEST(Turns, MoveThePixelsOfASmallPicture) {
    DibOwner picture = MakePicture(3, 2, 24, {1, 2, 3, 4, 5, 6});
    struct {
        DibHandle (*turn)(DibHandle);
        int32_t width;
        std::vector<uint32_t> pixels;
    } const kCases[] = {
        {DibTurnClockwise, 2, {4, 1, 5, 2, 6, 3}},
        {DibTurnAnticlockwise, 2, {3, 6, 2, 5, 1, 4}},
        {DibTurnHalf, 3, {6, 5, 4, 3, 2, 1}},
    };
    for (const auto &item : kCases) {
        DibOwner turned(item.turn(picture.handle));
        int32_t width = 0;
        ASSERT_TRUE(DibInfo(turned.handle, &width, nullptr, nullptr, nullptr));
        EXPECT_EQ(width, item.width);
        EXPECT_EQ(PixelsOf(turned.handle), item.pixels);
    }
    EXPECT_EQ(DibTurnClockwise(nullptr), nullptr);
}

// Every depth has a road of its own, and sides around the size of a block and of a register have their remainders.
TEST(Turns, AgreeWithTheirDefinitionAtEveryDepth) {
    for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
        for (auto [width, height] :
             {std::pair{1, 1}, {5, 1}, {1, 6}, {7, 33}, {33, 7}, {64, 65}, {97, 40}, {150, 83}}) {
            uint32_t state = 77;
            std::vector<uint32_t> pixels(static_cast<size_t>(width * height));
            for (uint32_t &pixel : pixels) pixel = TestRandom(&state);
            DibOwner source = MakePicture(width, height, bits, pixels);
            DibOwner right(DibTurnClockwise(source.handle)), left(DibTurnAnticlockwise(source.handle)),
                half(DibTurnHalf(source.handle));
            DibLock from(source.handle), toRight(right.handle), toLeft(left.handle), toHalf(half.handle);
            ASSERT_TRUE(toRight && toLeft && toHalf);
            for (int32_t y = 0; y < height; y++) {
                for (int32_t x = 0; x < width; x++) {
                    const uint32_t pixel = DibGetPixel(from.image, x, y);
                    ASSERT_EQ(DibGetPixel(toRight.image, height - y - 1, x), pixel) << bits << ' ' << x << ' ' << y;
                    ASSERT_EQ(DibGetPixel(toLeft.image, y, width - x - 1), pixel) << bits << ' ' << x << ' ' << y;
                    ASSERT_EQ(DibGetPixel(toHalf.image, width - x - 1, height - y - 1), pixel) << bits;
                }
            }
            EXPECT_TRUE(SamePicture(DibOwner(DibTurnAnticlockwise(right.handle)).handle, source.handle)) << bits;
        }
    }
}

} // namespace lmf::testing
