#include "image/core/pixel_map.h"

#include "support/pictures.h"

namespace lmf::testing {

static ChannelTables RandomTables(uint32_t seed) {
    ChannelTables tables;
    for (ToneTable *table : {&tables.red, &tables.green, &tables.blue}) {
        for (uint8_t &entry : table->at) entry = static_cast<uint8_t>(TestRandom(&seed) >> 8);
    }
    return tables;
}

TEST(PixelMap, ChannelsGoThroughTheirOwnTablesAtEveryDepthAndWidth) {
    const ChannelTables tables = RandomTables(3);
    for (uint32_t bits : {1u, 4u, 8u, 24u, 32u}) {
        for (int32_t width : {1, 7, 63, 64, 65, 200}) {
            const LockedDib source = RandomDepth(width, 3, bits, bits);
            const ReadView from = source;
            const LockedDib expected = PictureLike(source, [&](int32_t x, int32_t y) {
                const Color color = DibGetPixel(from, x, y);
                return PackColor(tables.red.at[RedOf(color)], tables.green.at[GreenOf(color)],
                                 tables.blue.at[BlueOf(color)]);
            });
            PixelPass pass(source);
            ASSERT_TRUE(pass);
            MapChannels(pass, tables);
            ASSERT_TRUE(SamePicture(LockedDib(pass.Finish()), expected)) << bits << " bits, width " << width;
        }
    }
}

TEST(PixelMap, RowsNeverReachThePadding) {
    const LockedDib source = MakePicture(21, 2, 24);
    PixelPass pass(source);
    ASSERT_TRUE(pass);
    MapChannels(pass, RandomTables(4));
    EXPECT_NE(pass.to.MemoryRow(0)[62], 0);
    EXPECT_EQ(pass.to.MemoryRow(0)[63], 0);
}

TEST(PixelMap, ResultsKeepThePaletteOnlyWhenAsked) {
    const LockedDib source = RandomPicture(2, 2, kModePalette, 1);
    EXPECT_EQ(PaletteOf(LockedDib(PixelPass(source).Finish())).At(77), PaletteOf(source).At(77));
    EXPECT_EQ(PaletteOf(LockedDib(PixelPass(source, ResultPalette::Black).Finish())).At(77), 0u);
}

} // namespace lmf::testing
