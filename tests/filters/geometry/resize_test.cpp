#include "filters/geometry/resize.h"

#include "image/nearest.h"
#include "image/resample.h"
#include "support/pictures.h"

namespace lmf::testing {

TEST(Resize, TakesTheRoadThatTheSettingsAskFor) {
    DibOwner source = RandomPicture(40, 30, kModeTrueColor, 6);
    FilterContext context = ContextWith({{&P::FilterResizeHorz, 50},
                                         {&P::FilterResizeVert, 200},
                                         {&P::FilterResizeFilter, 5},
                                         {&P::FilterResizeWidth, 100},
                                         {&P::FilterResizeDepth, 33}});
    const auto makes = [&](DibHandle expected) {
        return SamePicture(RunKernel("Resize", source.handle, &context), DibOwner(expected));
    };
    EXPECT_TRUE(makes(DibScaleTo(source.handle, 20, 15, 5)));
    context.FilterResizeConstant = 0;
    EXPECT_TRUE(makes(DibScaleTo(source.handle, 20, 60, 5)));
    context.FilterResizeByDim = 1;
    EXPECT_TRUE(makes(DibScaleTo(source.handle, 100, 33, 5)));
    context.FilterResizeConstant = 1;
    EXPECT_TRUE(makes(DibScaleTo(source.handle, 44, 33, 5)));
    context.FilterResizeInterpolate = 0;
    EXPECT_TRUE(makes(DibScaleNearest(source.handle, 50, 50)));
}

TEST(Resize, PalettesGoByTheHorizontalPercentage) {
    for (ImageMode mode : {kModePalette, kModeMono}) {
        const DibOwner source = RandomPicture(20, 10, mode, 6);
        EXPECT_TRUE(SamePicture(RunKernel("Resize", source.handle,
                                          {{&P::FilterResizeHorz, 150},
                                           {&P::FilterResizeVert, 20},
                                           {&P::FilterResizeByDim, 1},
                                           {&P::FilterResizeWidth, 500},
                                           {&P::FilterResizeDepth, 500}}),
                                DibOwner(DibScaleNearest(source.handle, 150, 150))));
    }
}

} // namespace lmf::testing
