// The road of one run: capability test, ownership of every handle, the second picture.
#include "engine/apply.h"

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "support/pictures.h"

namespace lmf::testing {

static int32_t RowOf(const std::string &name) {
    for (int32_t row = 0; row < kFilterCount; row++)
        if (name == FilterCatalogue[row].name) return row;
    return -1;
}

/// A run on a picture, with what it made.
struct DirectRun {
    FilterContext context = MakeContext();
    bool good = false;

    DirectRun(int32_t row, DibHandle source, DibHandle second = nullptr) {
        context.filterIndex = row;
        context.source = source;
        context.second = second;
        context.secondResult = DibClone(second);
        context.mode = DibClassify(source);
        good = ApplyFilterDirect(&context) != 0;
    }
    ~DirectRun() {
        BlockFree(context.result);
        BlockFree(context.secondResult);
        BlockFree(context.auxImage);
    }
};

TEST(Apply, RefusesModesAndRowsThatItDoesNotHave) {
    const DibOwner mono = RandomPicture(4, 4, kModeMono, 1), color = RandomPicture(4, 4, kModeTrueColor, 1);
    const DirectRun gammaOnMono(RowOf("Gamma"), mono.handle);
    EXPECT_FALSE(gammaOnMono.good);
    EXPECT_EQ(gammaOnMono.context.errorCode, kErrorUnsupported);
    for (int32_t row : {-1, kFilterCount, 1 << 30}) {
        const DirectRun run(row, color.handle);
        EXPECT_FALSE(run.good);
        EXPECT_EQ(run.context.errorCode, kErrorUnsupported);
    }
}

TEST(Apply, FiltersThatNeedASecondPictureCountAsColorCapable) {
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[RowOf("Alpha shadow")], kModeTrueColor));
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[RowOf("Remove Alpha")], kModeTrueColor));
    EXPECT_FALSE(FilterAccepts(FilterCatalogue[RowOf("Convert to RGB")], kModeTrueColor));
}

TEST(Apply, APointFilterLeavesTheSecondPictureAlone) {
    const DibOwner color = RandomPicture(5, 4, kModeTrueColor, 1), alpha = RandomPicture(5, 4, kModeGrey, 2);
    const DirectRun run(RowOf("Invert Colors"), color.handle, alpha.handle);
    ASSERT_TRUE(run.good);
    EXPECT_EQ(run.context.errorCode, kErrorOk);
    EXPECT_NE(run.context.secondResult, alpha.handle);
    EXPECT_TRUE(SamePicture(run.context.secondResult, alpha.handle));
    EXPECT_EQ(run.context.mode, kModeTrueColor);
}

TEST(Apply, ANullSourceFailsAsMemory) {
    const DirectRun run(RowOf("Invert Colors"), nullptr);
    EXPECT_FALSE(run.good);
    EXPECT_EQ(run.context.errorCode, kErrorMemory);
}

} // namespace lmf::testing
