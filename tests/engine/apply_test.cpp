// The road of one run: capability test, ownership of every handle, the second picture.
#include "engine/direct_run.h"

#include <gtest/gtest.h>

#include "engine/catalogue.h"

namespace lmf::testing {

TEST(Apply, SaysWhyItRefuses) {
    const LockedDib mono = RandomPicture(4, 4, kModeMono, 1), color = RandomPicture(4, 4, kModeTrueColor, 1);
    struct Case {
        int32_t row;
        DibHandle source;
        ErrorCode expected;
    };
    const Case cases[] = {{RowOf("Gamma"), mono, kErrorUnsupported},
                          {-1, color, kErrorUnsupported},
                          {kFilterCount, color, kErrorUnsupported},
                          {1 << 30, color, kErrorUnsupported},
                          {RowOf("Invert Colors"), nullptr, kErrorMemory}};
    for (const Case &c : cases) {
        const DirectRun run(c.row, c.source);
        EXPECT_FALSE(run.good);
        EXPECT_EQ(run.context.errorCode, c.expected) << c.row;
    }
}

TEST(Apply, FiltersThatNeedASecondPictureCountAsColorCapable) {
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[RowOf("Alpha shadow")], kModeTrueColor));
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[RowOf("Remove Alpha")], kModeTrueColor));
    EXPECT_FALSE(FilterAccepts(FilterCatalogue[RowOf("Convert to RGB")], kModeTrueColor));
}

TEST(Apply, APointFilterLeavesTheSecondPictureAlone) {
    const LockedDib color = RandomPicture(5, 4, kModeTrueColor, 1), alpha = RandomPicture(5, 4, kModeGrey, 2);
    const DirectRun run(RowOf("Invert Colors"), color, alpha);
    ASSERT_TRUE(run.good);
    EXPECT_EQ(run.context.errorCode, kErrorOk);
    EXPECT_NE(run.context.secondResult, alpha);
    EXPECT_TRUE(SamePicture(run.context.secondResult, alpha));
    EXPECT_EQ(run.context.mode, kModeTrueColor);
}

} // namespace lmf::testing
