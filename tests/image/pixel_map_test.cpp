#include "image/pixel_map.h"

#include <gtest/gtest.h>

#include "support/pictures.h"

namespace lmf::testing {

static ChannelTables RandomTables(uint32_t seed) {
    ChannelTables tables;
    for (ToneTable *table : {&tables.red, &tables.green, &tables.blue}) {
        for (uint8_t &entry : table->at) entry = static_cast<uint8_t>(TestRandom(&seed) >> 8);
    }
    return tables;
}

/// A picture with random bytes everywhere, at any depth.
static DibOwner AnyPicture(int32_t width, int32_t height, uint32_t bits) {
    std::vector<uint32_t> pixels;
    uint32_t state = bits;
    for (int32_t i = 0; i < width * height; i++) pixels.push_back(TestRandom(&state) * 0x10001 ^ TestRandom(&state));
    return MakePicture(width, height, bits, pixels);
}

TEST(PixelMap, ChannelsGoThroughTheirOwnTablesAtEveryDepthAndWidth) {
    const ChannelTables tables = RandomTables(3);
    for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
        for (int32_t width : {1, 7, 63, 64, 65, 200}) {
            DibOwner source = AnyPicture(width, 3, bits);
            DibOwner expected(DibClone(source.handle));
            DibLock lock(expected.handle);
            for (int32_t y = 0; y < 3; y++) {
                for (int32_t x = 0; x < width; x++) {
                    const Color color = DibGetPixel(lock.image, x, y);
                    DibSetPixel(lock.image, x, y,
                                PackColor(tables.red.at[RedOf(color)], tables.green.at[GreenOf(color)],
                                          tables.blue.at[BlueOf(color)]));
                }
            }
            PixelPass pass(source.handle);
            ASSERT_TRUE(pass);
            MapChannels(pass, tables);
            DibOwner result(pass.Finish());
            ASSERT_TRUE(SamePicture(result.handle, expected.handle)) << bits << " bits, width " << width;
        }
    }
}

TEST(PixelMap, RowsNeverReachThePadding) {
    DibOwner source = MakePicture(21, 2, 24);
    PixelPass pass(source.handle);
    ASSERT_TRUE(pass);
    ToneTable ones;
    for (uint8_t &entry : ones.at) entry = 1;
    MapChannels(pass, ones);
    EXPECT_EQ(pass.to.view.MemoryRow(0)[62], 1);
    EXPECT_EQ(pass.to.view.MemoryRow(0)[63], 0);
}

TEST(PixelMap, ResultsKeepThePaletteOnlyWhenAsked) {
    DibOwner source = RandomPicture(2, 2, kModePalette, 1);
    for (ResultPalette kind : {ResultPalette::OfSource, ResultPalette::Black}) {
        PixelPass pass(source.handle, kind);
        DibOwner result(pass.Finish());
        Palette768 before, after;
        ASSERT_TRUE(DibInfo(source.handle, nullptr, nullptr, nullptr, &before));
        ASSERT_TRUE(DibInfo(result.handle, nullptr, nullptr, nullptr, &after));
        EXPECT_EQ(after.At(77), kind == ResultPalette::OfSource ? before.At(77) : 0);
    }
    EXPECT_FALSE(PixelPass(nullptr));
}

TEST(PixelMap, PaletteChangesLeaveThePixels) {
    const ChannelTables tables = RandomTables(9);
    DibOwner source = RandomPicture(5, 4, kModePalette, 2);
    DibOwner result(MapPaletteChannels(source.handle, tables));
    EXPECT_EQ(PixelsOf(result.handle), PixelsOf(source.handle));
    Palette768 before, after;
    ASSERT_TRUE(DibInfo(source.handle, nullptr, nullptr, nullptr, &before));
    ASSERT_TRUE(DibInfo(result.handle, nullptr, nullptr, nullptr, &after));
    for (uint32_t i = 0; i < 256; i++) {
        const Color color = before.At(i);
        ASSERT_EQ(after.At(i), PackColor(tables.red.at[RedOf(color)], tables.green.at[GreenOf(color)],
                                         tables.blue.at[BlueOf(color)]));
    }
}

} // namespace lmf::testing
