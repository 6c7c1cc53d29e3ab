// The road of one run: capability test, limits, ownership of every handle, the second picture.
#include "engine/direct_run.h"

namespace lmf::testing {

TEST(Apply, SaysWhyItRefuses) {
    const LockedDib mono = RandomPicture(4, 4, kModeMono, 1), color = RandomPicture(4, 4, kModeTrueColor, 1);
    struct Case {
        int32_t row;
        const LockedDib &source;
        int32_t expected;
    };
    const LockedDib none;
    const Case cases[] = {{LMF_FILTER_GAMMA, mono, LMF_ERROR_UNSUPPORTED},
                          {-1, color, LMF_ERROR_UNSUPPORTED},
                          {kFilterCount, color, LMF_ERROR_UNSUPPORTED},
                          {1 << 30, color, LMF_ERROR_UNSUPPORTED},
                          {LMF_FILTER_INVERT_COLORS, none, LMF_ERROR_MEMORY}};
    for (const Case &c : cases) {
        const DirectRun run(c.row, c.source);
        EXPECT_FALSE(run.good);
        EXPECT_EQ(run.context.errorCode, c.expected) << c.row;
    }
}

TEST(Apply, FiltersThatNeedASecondPictureCountAsColorCapable) {
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[LMF_FILTER_ALPHA_SHADOW], kModeTrueColor));
    EXPECT_TRUE(FilterAccepts(FilterCatalogue[LMF_FILTER_REMOVE_ALPHA], kModeTrueColor));
    EXPECT_FALSE(FilterAccepts(FilterCatalogue[LMF_FILTER_CONVERT_TO_RGB], kModeTrueColor));
}

TEST(Apply, TheSecondPictureMovesStaysOrGoesByTheFlags) {
    const LockedDib color = RandomPicture(5, 4, kModeTrueColor, 1), alpha = RandomPicture(5, 4, kModeGrey, 2);
    {
        const DirectRun run(LMF_FILTER_INVERT_COLORS, color, alpha);
        ASSERT_TRUE(run.good);
        EXPECT_NE(run.context.secondResult, alpha.owner.handle);
        EXPECT_TRUE(SamePicture(run.Second().view, alpha)) << "pixels stay: a copy";
        EXPECT_EQ(run.context.errorCode, LMF_ERROR_OK);
        EXPECT_EQ(run.context.mode, kModeTrueColor);
    }
    {
        FilterContext context = MakeContext();
        context.FilterFlipDirection = 1;
        const DirectRun run(LMF_FILTER_FLIP, color, alpha, context), grey(LMF_FILTER_FLIP, alpha, LockedDib(), context);
        ASSERT_TRUE(run.good && grey.good);
        EXPECT_TRUE(SamePicture(run.Second().view, grey.Result().view)) << "moved as a grey picture is";
        EXPECT_FALSE(SamePicture(run.Second().view, alpha));
    }
    for (int32_t row : {LMF_FILTER_BAYER_DITHER, LMF_FILTER_CONVERT_TO_MONO, LMF_FILTER_REMOVE_ALPHA})
        EXPECT_EQ(DirectRun(row, color, alpha).context.secondResult, nullptr) << "dropped by " << row;
    EXPECT_EQ(DirectRun(LMF_FILTER_INVERT_COLORS, color).context.secondResult, nullptr);
}

TEST(Apply, ASecondRunFreesWhatTheFirstLeft) {
    const LockedDib color = RandomPicture(6, 4, kModeTrueColor, 1), alpha = RandomPicture(6, 4, kModeGrey, 2);
    const int64_t before = LiveBlocks();
    {
        FilterContext context = MakeContext();
        context.FilterRotateAngle = 301;
        DirectRun run(LMF_FILTER_ROTATE, color, alpha, context);
        ASSERT_TRUE(run.good);
        int32_t width = 0;
        ASSERT_TRUE(DibInfo(run.context.auxImage, &width, nullptr, nullptr, nullptr));
        EXPECT_EQ(width, run.context.resultWidth) << "the coverage of a rotation";
        run.context.filterIndex = LMF_FILTER_ADD_ALPHA;
        EXPECT_EQ(ApplyFilter(run.context), LMF_ERROR_OK);
        EXPECT_EQ(run.context.auxImage, nullptr);
        EXPECT_EQ(run.context.resultWidth, 6);
        EXPECT_EQ(DibGetPixel(run.Second().view, 0, 0), 255u) << "the new mask, not the one that came in";
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(Apply, LimitsEveryNumberBeforeTheKernelRuns) {
    const LockedDib color = RandomPicture(9, 9, kModeTrueColor, 3);
    FilterContext far = MakeContext(), limit = MakeContext();
    far.FilterGaussianRadius = INT32_MAX;
    limit.FilterGaussianRadius = 990;
    const DirectRun a(LMF_FILTER_GAUSSIAN_BLUR, color, LockedDib(), far),
        b(LMF_FILTER_GAUSSIAN_BLUR, color, LockedDib(), limit);
    EXPECT_TRUE(SamePicture(a.Result().view, b.Result().view));
    EXPECT_EQ(a.context.FilterGaussianRadius, 990);
}

} // namespace lmf::testing
