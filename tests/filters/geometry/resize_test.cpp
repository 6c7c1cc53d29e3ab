#include "filters/geometry/resize.h"

#include "image/scale/nearest.h"
#include "image/scale/resample.h"
#include "support/pictures.h"

namespace lmf::testing {

TEST(Resize, TakesTheRoadThatTheSettingsAskFor) {
    LockedDib source = RandomPicture(40, 30, kModeTrueColor, 6);
    FilterContext context = ContextWith({{&P::FilterResizeHorz, 50},
                                         {&P::FilterResizeVert, 200},
                                         {&P::FilterResizeFilter, 5},
                                         {&P::FilterResizeWidth, 100},
                                         {&P::FilterResizeDepth, 33}});
    const auto makes = [&](DibHandle expected) {
        return SamePicture(RunKernel("Resize", source, context), LockedDib(expected));
    };
    EXPECT_TRUE(makes(DibScaleTo(source, 20, 15, 5)));
    context.FilterResizeConstant = 0;
    EXPECT_TRUE(makes(DibScaleTo(source, 20, 60, 5)));
    context.FilterResizeByDim = 1;
    EXPECT_TRUE(makes(DibScaleTo(source, 100, 33, 5)));
    context.FilterResizeConstant = 1;
    EXPECT_TRUE(makes(DibScaleTo(source, 44, 33, 5)));
    context.FilterResizeInterpolate = 0;
    EXPECT_TRUE(makes(DibScaleNearest(source, 50, 50)));
}

TEST(Resize, PalettesGoByTheHorizontalPercentage) {
    for (ImageMode mode : {kModePalette, kModeMono}) {
        const LockedDib source = RandomPicture(20, 10, mode, 6);
        EXPECT_TRUE(SamePicture(RunKernel("Resize", source,
                                          {{&P::FilterResizeHorz, 150},
                                           {&P::FilterResizeVert, 20},
                                           {&P::FilterResizeByDim, 1},
                                           {&P::FilterResizeWidth, 500},
                                           {&P::FilterResizeDepth, 500}}),
                                LockedDib(DibScaleNearest(source, 150, 150))));
    }
}

} // namespace lmf::testing
