#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include <zlib.h>

#include "image/texture/cpx.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kPictureSizeAt = 8, kCompressedSizeAt = 12, kPassedOverAt = 16, kStreamAt = 52;

void SetNumberAt(Bytes *bytes, size_t at, uint32_t number) {
    std::memcpy(&(*bytes)[at], &number, sizeof number);
}

Bytes BytesOf(const LockedDib &picture) {
    const auto *first = static_cast<const uint8_t *>(BlockLock(picture.owner.handle));
    Bytes bytes(first, first + ReadView(picture).blockSize);
    BlockUnlock(picture.owner.handle);
    return bytes;
}

/// A container written from the layout's own words: magic, two sizes, 1, 32 zeros, the stream.
Bytes ContainerOf(const Bytes &content) {
    uLongf size = compressBound(content.size());
    Bytes container(kStreamAt + size);
    std::memcpy(container.data(), "CPX_HEAD", 8);
    EXPECT_EQ(compress2(&container[kStreamAt], &size, content.data(), content.size(), 9), Z_OK);
    SetNumberAt(&container, kPictureSizeAt, static_cast<uint32_t>(content.size()));
    SetNumberAt(&container, kCompressedSizeAt, static_cast<uint32_t>(size));
    SetNumberAt(&container, kPassedOverAt, 1);
    container.resize(kStreamAt + size);
    return container;
}

/// Reads from a copy without a byte to spare, so that sanitizers see every read past the end.
LockedDib Read(const Bytes &container) {
    const auto exact = std::make_unique<uint8_t[]>(container.size());
    std::copy(container.begin(), container.end(), exact.get());
    return LockedDib(ReadCpx({exact.get(), container.size()}));
}

} // namespace

TEST(Cpx, GivesBackEveryByteOfAPicture) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        const LockedDib picture = RandomPicture(37, 11, mode, 5);
        Bytes container = ContainerOf(BytesOf(picture));
        EXPECT_EQ(BytesOf(Read(container)), BytesOf(picture));
        container.insert(container.end(), 7, 0xAA);
        EXPECT_EQ(BytesOf(Read(container)), BytesOf(picture)) << "bytes after the stream";
    }
    const LockedDib flat(DibCreate(3000, 3000, nullptr, 24)); // as far as a stream can shrink
    EXPECT_EQ(BytesOf(Read(ContainerOf(BytesOf(flat)))), BytesOf(flat));
}

TEST(Cpx, RefusesEveryTruncationAndSurvivesEveryChangedByte) {
    const Bytes content = BytesOf(RandomPicture(9, 5, kModeGrey, 2)), container = ContainerOf(content);
    const int64_t blocks = LiveBlocks();
    for (size_t i = 0; i < container.size(); i++) {
        ASSERT_FALSE(Read(Bytes(container.begin(), container.begin() + static_cast<ptrdiff_t>(i)))) << i;
        for (int change : {0x01, 0x10, 0x80, 0xFF}) {
            Bytes changed = container;
            changed[i] = static_cast<uint8_t>(changed[i] ^ change);
            const LockedDib picture = Read(changed);
            if (i < kStreamAt) {
                ASSERT_TRUE(i < kPassedOverAt ? !picture : BytesOf(picture) == content) << i;
            } else if (picture) {
                ASSERT_EQ(BytesOf(picture).size(), content.size()) << i;
            }
        }
    }
    EXPECT_EQ(LiveBlocks(), blocks);
    EXPECT_EQ(LiveLocks(), 0);
}

TEST(Cpx, RefusesSizesThatDoNotAgreeWithTheData) {
    const Bytes container = ContainerOf(BytesOf(RandomPicture(9, 5, kModeGrey, 3)));
    for (size_t at : {kPictureSizeAt, kCompressedSizeAt}) {
        uint32_t size = 0;
        std::memcpy(&size, &container[at], sizeof size);
        for (uint32_t lie : {0u, 1u, size - 1, size + 1, size * 2, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            Bytes changed = container;
            changed.resize(container.size() + 4096); // room for what the header promises
            SetNumberAt(&changed, at, lie);
            EXPECT_FALSE(Read(changed)) << at << ": " << lie;
        }
    }
}

TEST(Cpx, RefusesWhatIsNoPicture) {
    Bytes taller = BytesOf(RandomPicture(8, 5, kModeGrey, 4));
    taller[8]++; // its height
    for (const Bytes &content : {Bytes(), Bytes(39, 1), Bytes(4000, 0), taller})
        EXPECT_FALSE(Read(ContainerOf(content)));
}

TEST(Cpx, FailsWithoutMemoryAndAsksForNoneThatALieCalledFor) {
    Bytes container = ContainerOf(BytesOf(RandomPicture(9, 5, kModeGrey, 3)));
    FailAllocationAfter(0);
    EXPECT_FALSE(Read(container));
    SetNumberAt(&container, kPictureSizeAt, 0x7FFFFFFF);
    EXPECT_FALSE(Read(container));
    EXPECT_EQ(FailedAllocations(), 1);
    FailAllocationAfter(-1);
}

} // namespace lmf::testing
