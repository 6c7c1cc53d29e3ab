#include "adjust/pipeline.h"

#include "support/pictures.h"

namespace lmf::testing {

TEST(AdjustPipeline, WithoutSwitchesThePictureItselfComesBack) {
    const LockedDib source = MakePicture(2, 1, 32, {0x80112233, 0xFF445566});
    FilterContext context = MakeContext();
    const DibHandle clone = DibClone(source);
    const LockedDib result(AdjustPipeline(clone, {}, context));
    EXPECT_EQ(result.owner.handle, clone);
    EXPECT_TRUE(SamePicture(result, source));
    EXPECT_EQ(AdjustPipeline(nullptr, {{true, true, true, true, true, true}}, context), nullptr);
}

TEST(AdjustPipeline, RunsTheNamedFiltersInTheirOrder) {
    const std::string names[] = {"Normalize",
                                 "Color and Intensity",
                                 "Contrast and Brightness",
                                 "Hue Saturation Brightness",
                                 "Sigmoidal Contrast",
                                 "Equalize"};
    FilterContext context = ContextWith(
        {{&P::FilterRed, 190}, {&P::FilterContrast, 160}, {&P::FilterHSBHue, 220}, {&P::FilterEqualizeShadow, 150}});
    const LockedDib source = RandomPicture(23, 9, kModeTrueColor, 8);
    for (uint32_t switches = 1; switches < 64; switches++) {
        AdjustStageSet stages;
        LockedDib expected(DibClone(source));
        for (uint32_t i = 0; i < 6; i++) {
            stages.isOn[i] = switches >> i & 1;
            if (stages.isOn[i]) expected = RunKernel(names[i], expected, context, true);
        }
        const int64_t blocks = LiveBlocks();
        const LockedDib result(AdjustPipeline(DibClone(source), stages, context));
        ASSERT_TRUE(SamePicture(result, expected)) << switches;
        ASSERT_EQ(LiveBlocks(), blocks + 1) << "pictures between the stages must be freed";
    }
}

TEST(AdjustPipeline, AFailedStageIsPassedOver) {
    const LockedDib source = RandomPicture(5, 4, kModeTrueColor, 3);
    FilterContext context = MakeContext();
    const AdjustStageSet stages{{false, true, true}};
    DibHandle clone = DibClone(source);
    // Nothing can be allocated: both stages fail and the picture survives.
    FailAllocationAfter(0);
    LockedDib result(AdjustPipeline(clone, stages, context));
    FailAllocationAfter(-1);
    EXPECT_EQ(result.owner.handle, clone);
    EXPECT_TRUE(SamePicture(result, source));
}

TEST(AdjustPreviewBase, FitsThePictureIntoTheFrameByWholePercents) {
    struct Case {
        int32_t width, height, frameWidth, frameHeight;
        int32_t baseWidth, baseHeight, x, y;
    };
    static constexpr Case kCases[] = {
        {100, 50, 100, 50, 100, 50, 0, 0},   {10, 11, 100, 50, 10, 11, 45, 19},
        {300, 100, 299, 100, 297, 99, 1, 0}, // 99 percent
        {100, 51, 200, 50, 98, 50, 51, 0},   // 98 percent of 51 is 49.98
        {30, 90, 30, 45, 15, 45, 7, 0},
    };
    for (const Case &fit : kCases) {
        const LockedDib source = RandomPicture(fit.width, fit.height, kModeTrueColor, 2);
        const AdjustPreview preview = AdjustPreviewBase(source, fit.frameWidth, fit.frameHeight);
        const LockedDib base(preview.base);
        ASSERT_TRUE(base);
        EXPECT_EQ(base.View().width, fit.baseWidth);
        EXPECT_EQ(base.View().height, fit.baseHeight);
        EXPECT_TRUE(preview.x == fit.x && preview.y == fit.y) << preview.x << ',' << preview.y;
        EXPECT_EQ(SamePicture(base, source), fit.baseWidth == fit.width);
    }
    EXPECT_EQ(AdjustPreviewBase(RandomPicture(300, 2, kModeTrueColor, 2), 2, 2).base, nullptr);
}

} // namespace lmf::testing
