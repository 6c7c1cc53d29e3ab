#include "image/geometry/turns.h"

#include "support/pictures.h"

namespace lmf::testing {

// Every depth has a road of its own, and sides around the size of a block and of a register have their remainders.
TEST(Turns, AgreeWithTheirDefinitionAtEveryDepth) {
    for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
        for (auto [w, h] : {std::pair{1, 1}, {5, 1}, {1, 6}, {7, 33}, {33, 7}, {64, 65}, {97, 40}, {150, 83}}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(w) + "x" + std::to_string(h));
            const LockedDib source = RandomDepth(w, h, bits, 77), right(DibTurnClockwise(source));
            const ReadView from = source;
            ExpectPixels(right, [&, h = h](int32_t x, int32_t y) { return DibGetPixel(from, y, h - 1 - x); });
            ExpectPixels(LockedDib(DibTurnHalf(source)),
                         [&, w = w, h = h](int32_t x, int32_t y) { return DibGetPixel(from, w - 1 - x, h - 1 - y); });
            EXPECT_TRUE(SamePicture(LockedDib(DibTurnAnticlockwise(right)), source));
        }
    }
}

} // namespace lmf::testing
