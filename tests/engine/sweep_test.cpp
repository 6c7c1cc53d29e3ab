// Every row of the catalogue under bad weather: allocations that fail, tiny pictures, odd depths, settings out of
// range, and blocks that lie about what they hold.
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "engine/direct_run.h"
#include "support/clipboard.h"
#include "support/faces.h"

namespace lmf::testing {

static std::vector<uint8_t> BytesOf(BlockHandle block) {
    const auto *bytes = static_cast<const uint8_t *>(BlockLock(block));
    std::vector<uint8_t> copy(bytes, bytes + BlockSize(block));
    BlockUnlock(block);
    return copy;
}

/// A result is a whole picture of a depth that the library makes.
static void ExpectGoodPicture(const ReadView &picture) {
    ASSERT_GT(picture.width, 0);
    const auto *header = reinterpret_cast<const DibHeader *>(picture.colorTable - sizeof(DibHeader));
    const uint32_t bits = picture.bits;
    EXPECT_TRUE(bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32) << bits;
    EXPECT_EQ(header->biSize, 40);
    EXPECT_EQ(header->biPlanes, 1);
    EXPECT_EQ(header->biClrUsed, bits <= 8 ? 1u << bits : 0u);
    EXPECT_EQ(picture.blockSize,
              PixelOffset(bits) + RowStride(picture.width, bits) * static_cast<uint64_t>(picture.height));
}

/// The pictures that a filter may meet in each mode, 32 and 4 bits among them.
static std::vector<LockedDib> AllKinds(int32_t width, int32_t height, uint32_t seed) {
    std::vector<LockedDib> pictures;
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono})
        pictures.push_back(RandomPicture(width, height, mode, seed));
    seed++;
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) pixel = TestRandom(&seed);
    for (uint32_t bits : {32, 4}) pictures.push_back(MakePicture(width, height, bits, pixels));
    return pictures;
}

/// A setting inside its range, kept small where it is a size; now and then a value far outside.
static int32_t RandomValue(const PageControl &control, uint32_t *state) {
    if (TestRandom(state) % 16 == 0) return TestRandom(state) % 2 ? std::numeric_limits<int32_t>::min() : -1;
    const int64_t min = control.limits.Typed().min;
    const int64_t span = std::min<int64_t>(control.limits.Typed().max - min, 300);
    return static_cast<int32_t>(min + TestRandom(state) % (span + 1));
}

class Sweep : public ::testing::TestWithParam<int32_t> {
protected:
    void SetUp() override {
        if (Entry().flags & FilterNeedsClipboard) PutOnClipboard(clipboard.handle);
        blocksBefore = LiveBlocks();
    }
    void TearDown() override {
        FailAllocationAfter(-1);
        PutOnClipboard(nullptr);
        Settings = kFactorySettings;
        EXPECT_EQ(LiveLocks(), 0);
        EXPECT_EQ(LiveBlocks(), blocksBefore);
    }
    const FilterEntry &Entry() const { return FilterCatalogue[GetParam()]; }
    /// A context as it is once a filter that looks for faces has found some.
    FilterContext Prepared() const {
        FilterContext context = MakeContext();
        context.FaceDetectList = context.RedeyeList = faces.handle;
        return context;
    }
    const DibOwner clipboard{RandomPicture(6, 5, kModePalette, 13).Release()};
    const BlockOwner faces{MakeFaceList({{1, 1, 6, 5}, {-3, 2, 90, 4}}, {{2, 2, 4, 3}, {INT32_MIN, 0, INT32_MAX, 9}})};
    int64_t blocksBefore = 0;
};

TEST_P(Sweep, AFailedAllocationLeavesNothingBehind) {
    for (const LockedDib &source : AllKinds(9, 7, 11)) {
        const LockedDib second = RandomPicture(9, 7, kModeGrey, 12);
        const std::vector<uint8_t> sourceBytes = BytesOf(source.owner.handle),
                                   secondBytes = BytesOf(second.owner.handle);
        const int64_t before = LiveBlocks();
        bool failed = true;
        for (int64_t n = 0; failed && n < 4000; n++) {
            FailAllocationAfter(n);
            {
                const DirectRun run(GetParam(), source, second, Prepared());
                failed = FailedAllocations() > 0;
                FailAllocationAfter(-1);
                if (run.good) ExpectGoodPicture(run.Result().view);
                EXPECT_EQ(run.context.result != nullptr, run.good);
            }
            ASSERT_EQ(LiveBlocks(), before) << Entry().name << " with " << n << " allocations";
        }
        EXPECT_FALSE(failed) << Entry().name << " never ran to its end";
        EXPECT_EQ(BytesOf(source.owner.handle), sourceBytes);
        EXPECT_EQ(BytesOf(second.owner.handle), secondBytes);
    }
}

TEST_P(Sweep, TinyPicturesAndRandomSettings) {
    static constexpr int32_t kSizes[][2] = {{1, 1}, {1, 2}, {2, 1}, {2, 2}, {1, 19}, {19, 1},
                                            {3, 3}, {4, 5}, {7, 4}, {8, 8}, {33, 5}, {40, 31}};
    uint32_t state = 77 + static_cast<uint32_t>(GetParam());
    for (const auto &[width, height] : kSizes) {
        // Companions of another size and depth: a filter must never index one picture by the other's size.
        const LockedDib seconds[] = {LockedDib(), RandomPicture(width, height, kModeGrey, 3),
                                     RandomPicture(2, 3, kModeGrey, 4), RandomPicture(5, 1, kModeTrueColor, 5)};
        for (const LockedDib &source : AllKinds(width, height, state)) {
            const std::vector<uint8_t> sourceBytes = BytesOf(source.owner.handle);
            for (const LockedDib &second : seconds) {
                for (const PageControl &control : Entry().filter->page)
                    if (control.number != nullptr) Settings.*control.number = RandomValue(control, &state);
                FilterContext context = Prepared();
                context.paperColor = TestRandom(&state) & 0xFFFFFF;
                context.width = width;
                context.height = height;
                LoadPage(*Entry().filter, context);
                if (TestRandom(&state) % 2) context.clipboard = clipboard.handle;
                const DirectRun run(GetParam(), source, second, context);
                if (run.good) ExpectGoodPicture(run.Result().view);
            }
            ASSERT_EQ(BytesOf(source.owner.handle), sourceBytes) << Entry().name << " changed its source";
        }
    }
}

TEST_P(Sweep, LyingBlocksAreRefusedOrSurvived) {
    struct Lie {
        int32_t width, height;
        uint16_t bits;
        uint64_t blockBytes;
    };
    static constexpr int32_t kHuge = std::numeric_limits<int32_t>::max();
    // Too short in every way, sides that are impossible, and depths that nothing can read.
    static constexpr Lie kLies[] = {
        {4, 4, 24, 0},           {4, 4, 24, 1},
        {4, 4, 24, 39},          {4, 4, 24, 40},
        {4, 4, 24, 40 + 47},     {4, 4, 8, 40 + 1023},
        {4, 4, 8, 40 + 1024},    {4, 4, 8, 1024 + 55},
        {4, 4, 1, 40 + 8 + 15},  {0, 4, 24, 200},
        {4, 0, 24, 200},         {-4, 4, 24, 200},
        {4, -4, 24, 200},        {kHuge, 1, 24, 5000},
        {1, kHuge, 24, 5000},    {kHuge, kHuge, 32, 5000},
        {kHuge, kHuge, 1, 5000}, {kHuge, 3, 65535, 99},
        {3, 3, 0, 44},           {3, 3, 16, 40 + 24},
        {3, 3, 2, 56 + 12},      {3, 3, 7, 40 + 512 + 12},
        {3, 3, 64, 40 + 72},     {3, 3, 65535, 40 + 4 * 24576},
    };
    const LockedDib good = RandomPicture(4, 4, kModeTrueColor, 2), grey = RandomPicture(4, 4, kModeGrey, 2);
    for (const Lie &lie : kLies) {
        const BlockOwner block(BlockAlloc(lie.blockBytes));
        const DibHeader header{40, lie.width, lie.height, 1, lie.bits, 0, 0, 0, 0, 0, 0};
        if (void *bytes = BlockLock(block.handle)) {
            std::memset(bytes, 0xA5, lie.blockBytes);
            std::memcpy(bytes, &header, std::min<uint64_t>(sizeof header, lie.blockBytes));
            BlockUnlock(block.handle);
        }
        for (const auto &[source, second] :
             {std::pair{block.handle, grey.owner.handle}, {good.owner.handle, block.handle}}) {
            const DirectRun run(GetParam(), source, second, Prepared());
            EXPECT_TRUE(!run.good || run.Result());
        }
    }
}

/// The rows that have something to sweep.
static std::vector<int32_t> RowsWithKernel() {
    std::vector<int32_t> rows;
    for (int32_t row = 0; row < kFilterCount; row++)
        if (FilterCatalogue[row].filter->FilterKernel != nullptr) rows.push_back(row);
    return rows;
}

INSTANTIATE_TEST_SUITE_P(AllRows, Sweep, ::testing::ValuesIn(RowsWithKernel()), [](const auto &row) {
    std::string name = FilterCatalogue[row.param].name;
    std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
    return name;
});

} // namespace lmf::testing
