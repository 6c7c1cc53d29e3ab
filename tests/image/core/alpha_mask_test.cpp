#include "image/core/alpha_mask.h"

#include "support/pictures.h"

namespace lmf::testing {

TEST(AlphaMask, MultipliesTheSecondPictureWhereItLies) {
    struct Case {
        uint32_t bits;
        int32_t width, height, x, y;
    };
    // Whole, inside, over two edges, past all of them, beside the coverage, and in other depths.
    static constexpr Case kCases[] = {{8, 40, 7, 0, 0},  {8, 9, 3, 20, 2},    {8, 40, 7, -13, -2},
                                      {8, 40, 7, 30, 5}, {8, 90, 60, -9, -8}, {8, 9, 3, 40, 0},
                                      {8, 9, 3, -9, 0},  {24, 38, 9, 1, -1},  {1, 40, 7, 0, 0}};
    for (const Case &c : kCases) {
        const LockedDib before = RandomPicture(40, 7, kModeGrey, 5), second = RandomDepth(c.width, c.height, c.bits, 6);
        const LockedDib after(AlphaFromCoverage(LockedDib(DibClone(before)), second.owner.handle, c.x, c.y));
        ExpectPixels(after, [&](int32_t x, int32_t y) {
            const uint32_t alpha = DibGetPixel(second, x - c.x, y - c.y) & 255;
            return DibGetPixel(before, x, y) * alpha / 255;
        });
    }
    const LockedDib alone(AlphaFromCoverage(RandomPicture(5, 3, kModeGrey, 1), nullptr));
    EXPECT_TRUE(SamePicture(alone, RandomPicture(5, 3, kModeGrey, 1)));
}

} // namespace lmf::testing
