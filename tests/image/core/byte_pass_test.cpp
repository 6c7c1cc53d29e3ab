#include "image/core/byte_pass.h"

#include "support/pictures.h"

namespace lmf::testing {

TEST(BytePass, ShowsEveryDepthAsBytesAndTakesThemBack) {
    for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
        const LockedDib source = RandomDepth(13, 5, bits, 3);
        BytePass pass(source);
        ASSERT_TRUE(pass);
        ASSERT_EQ(pass.Channels(), bits > 8 ? 3 : 1);
        const auto channels = static_cast<uint32_t>(pass.Channels());
        for (int32_t y = 0; y < 5; y++) {
            for (uint32_t x = 0; x < 13 * channels; x++) {
                const uint32_t pixel = DibGetPixel(source, static_cast<int32_t>(x / channels), y);
                const uint32_t byte = channels == 1 ? pixel : pixel >> (16 - 8 * (x % 3)) & 255;
                ASSERT_EQ(pass.From().Row(y)[x], byte) << bits;
                pass.To().Row(y)[x] = static_cast<uint8_t>(byte ^ 0xFF);
            }
        }
        const uint32_t inverted = bits > 8 ? 0xFFFFFF : (1u << bits) - 1;
        const LockedDib result(pass.Finish());
        EXPECT_EQ(ReadView(result).bits, bits);
        ExpectPixels(result, [&](int32_t x, int32_t y) { return (DibGetPixel(source, x, y) ^ inverted) & inverted; });
        EXPECT_EQ(PaletteOf(result).At(1), PaletteOf(source).At(1));
    }
}

TEST(BytePass, ReadsOtherDepthsAsAllOnes) {
    const DibOwner odd(DibCreate(3, 2, nullptr, 32));
    static_cast<DibHeader *>(BlockLock(odd.handle))->biBitCount = 16;
    BlockUnlock(odd.handle);
    const DibReadLock lock(odd.handle);
    BytePass pass(lock.view);
    ASSERT_TRUE(pass && pass.Channels() == 3);
    for (int32_t i = 0; i < 9; i++) EXPECT_EQ(pass.From().Row(1)[i], 255);
}

} // namespace lmf::testing
