// Pictures of every depth as rows of bytes, and back.
#include "image/core/byte_pass.h"

#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// What a pass sees of a source, and what becomes of the same bytes as its result.
struct RoundTrip {
    int32_t channels = 0;
    std::vector<uint8_t> seen; ///< row by row from the top
    LockedDib result;

    explicit RoundTrip(const ReadView &source, Color outside = 0xFFFFFF) {
        BytePass pass(source, outside);
        if (!pass) return;
        channels = pass.Channels();
        for (int32_t y = 0; y < source.height; y++) {
            const uint8_t *row = pass.From().Row(y);
            seen.insert(seen.end(), row, row + source.width * channels);
            std::copy(row, row + source.width * channels, pass.To().Row(y));
        }
        result = LockedDib(pass.Finish());
    }
};

using Bytes = std::vector<uint8_t>;

} // namespace

TEST(BytePass, SeesEveryDepthAsBytesAndGivesItBack) {
    for (uint32_t bits : {1u, 4u, 8u, 24u}) {
        const LockedDib picture = RandomDepth(19, 3, bits, bits);
        const RoundTrip trip(picture);
        EXPECT_EQ(trip.channels, bits == 24 ? 3 : 1);
        EXPECT_TRUE(SamePicture(trip.result, picture)) << bits;
    }
    EXPECT_EQ(RoundTrip(MakePicture(3, 2, 4, {1, 15, 0, 7, 8, 9})).seen, (Bytes{1, 15, 0, 7, 8, 9}));
    EXPECT_EQ(RoundTrip(MakePicture(2, 1, 24, {0x010203, 0xFFFFFF})).seen, (Bytes{1, 2, 3, 255, 255, 255}));
}

TEST(BytePass, DropsAlphaAndPutsAnotherColorForOpaqueWhite) {
    const LockedDib picture = MakePicture(3, 1, 32, {0x80010203, 0xFFFFFFFF, 0xFEFFFFFF});
    const RoundTrip plain(picture), other(picture, 0x0A0B0C);
    EXPECT_EQ(plain.seen, (Bytes{1, 2, 3, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(PixelsOf(plain.result), (Pixels{0x010203, 0xFFFFFF, 0xFFFFFF}));
    EXPECT_EQ(other.seen, (Bytes{1, 2, 3, 10, 11, 12, 255, 255, 255}));
}

TEST(BytePass, DepthsThatCannotBeReadAreAllOutside) {
    LockedDib picture = MakePicture(4, 1, 24);
    auto *header = reinterpret_cast<DibHeader *>(picture.View().bottom - PixelOffset(24));
    header->biBitCount = 16;
    const DibReadLock source(picture.owner.handle);
    const RoundTrip trip(source.view, 0x0A0B0C);
    EXPECT_EQ(trip.seen, (Bytes{10, 11, 12, 10, 11, 12, 10, 11, 12, 10, 11, 12}));
    EXPECT_EQ(trip.result.View().bits, 24u);
}

} // namespace lmf::testing
