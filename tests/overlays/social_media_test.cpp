#include "engine/destinations_file.h"
#include "engine/direct_run.h"
#include "image/blur/gaussian.h"
#include "image/core/dib_ops.h"
#include "image/draw/gradient_picture.h"
#include "image/scale/resample.h"
#include "overlays/social_compose.h"

namespace lmf::testing {

using P = FilterParameters;

constexpr Color kBar = 0x102030, kLine = 0x0A0B0C;

/// A plain layout with the picture in the middle: no line, no shadow, nothing soft.
static SocialLayout PlainLayout() {
    SocialLayout layout = {};
    layout.color1 = kBar;
    layout.gradientX = layout.gradientY = layout.placementX = layout.placementY = 50;
    layout.hsbHue = 180;
    layout.hsbSat = layout.hsbBri = layout.scale = 100;
    layout.keylineSize = 1;
    layout.keylineColor = kLine;
    return layout;
}

static LockedDib Composed(const ReadView &source, const SocialLayout &layout, int32_t width, int32_t depth,
                          int32_t process) {
    return LockedDib(SocialCompose(source, layout, {"", width, depth, 0, 0, 0}, process));
}

TEST(SocialMedia, FillKeepsOneSideOfTheSource) {
    // 20 x 10 for 30 x 10: half as large again is 30 x 15, and nothing is over in width, so that stays 20.
    const LockedDib source = RandomPicture(20, 10, kModeTrueColor, 1);
    const LockedDib scaled(DibScaleTo(source, 20, 15, kWindowAutomatic));
    const LockedDib wide = Composed(source, PlainLayout(), 30, 10, kSocialFill);
    EXPECT_TRUE(SamePicture(wide, LockedDib(DibCropRect(scaled, 0, 2, 30, 12))));
    // For 10 x 10 all fits: 20 x 10, of which 5 columns go on either side.
    const LockedDib narrow = Composed(source, PlainLayout(), 10, 10, 99);
    EXPECT_TRUE(SamePicture(narrow, LockedDib(DibCropRect(source, 5, 0, 15, 10))));
}

TEST(SocialMedia, BarsStandAtTheSidesThatAreLeft) {
    const LockedDib source = RandomPicture(20, 10, kModeTrueColor, 2);
    SocialLayout layout = PlainLayout();
    layout.keylineEnable = 1;
    ExpectPixels(Composed(source, layout, 31, 10, kSocialSolidBars), [&](int32_t x, int32_t y) {
        if (x == 4 || x == 25) return kLine;
        return x < 4 || x > 25 ? kBar : DibGetPixel(source, x - 5, y);
    });
    layout.placementY = 0;
    ExpectPixels(Composed(source, layout, 20, 14, kSocialSolidBars), [&](int32_t x, int32_t y) {
        return y == 10 ? kLine : y > 10 ? kBar : DibGetPixel(source, x, y);
    });
    // Two pictures for two bars, of which one is turned over.
    layout = PlainLayout();
    layout.color2 = 0xFF8040;
    layout.gradientAngle = 30;
    const LockedDib bar(GradientPicture(kBar, 0xFF8040, 5, 10, 0, 0, 30, kGradientLinear));
    const LockedDib longer(GradientPicture(kBar, 0xFF8040, 6, 10, 0, 0, 30, kGradientLinear));
    ExpectPixels(Composed(source, layout, 31, 10, kSocialDoubleGradientBarsMirrored), [&](int32_t x, int32_t y) {
        return x < 5 ? DibGetPixel(bar, x, y) : x < 25 ? DibGetPixel(source, x - 5, y) : DibGetPixel(longer, 30 - x, y);
    });
    layout.blur = 12;
    const auto soft = [&](int32_t width, int32_t height) {
        const LockedDib scaled(DibScaleTo(source, width, height, kWindowAutomatic));
        return LockedDib(GaussianBlurDirect(LockedDib(DibAdjustHsv(scaled, 0, 1, 1)), 50, 12));
    };
    const LockedDib above = soft(20, 3), below = soft(20, 4);
    ExpectPixels(Composed(source, layout, 20, 17, kSocialSoftBarsReverseMirrored), [&](int32_t x, int32_t y) {
        return y < 3    ? DibGetPixel(above, x, 2 - y)
               : y < 13 ? DibGetPixel(source, x, y - 3)
                        : DibGetPixel(below, x, y - 13);
    });
}

TEST(SocialMedia, TheLargePictureCoversTheSheet) {
    const LockedDib source = RandomPicture(20, 10, kModeTrueColor, 3);
    const LockedDib large(DibScaleTo(source, 40, 20, kWindowAutomatic));
    const LockedDib back(DibAdjustHsv(LockedDib(DibCropRect(large, 0, 5, 40, 15)), 25, 0.5f, 1.5f));
    SocialLayout layout = PlainLayout();
    layout.hsbHue = 205;
    layout.hsbSat = 50;
    layout.hsbBri = 150;
    ExpectPixels(Composed(source, layout, 40, 10, kSocialLargeBackground), [&](int32_t x, int32_t y) {
        return x < 10 || x >= 30 ? DibGetPixel(back, x, y) : DibGetPixel(source, x - 10, y);
    });
}

TEST(SocialMedia, AShadowHasItsRoomWhetherOrNotItFalls) {
    // 90 % of 200 x 100 is 180 x 90; a shadow 9 % of 90 away, 8, needs 2 more pixels with softness 2. So 80 rows are
    // left and 160 columns, 20 columns and 10 rows from the corner.
    const LockedDib source = RandomPicture(200, 100, kModeTrueColor, 4);
    const LockedDib small(DibScaleTo(source, 160, 80, kWindowAutomatic));
    SocialLayout layout = PlainLayout();
    layout.frameMargin = 10;
    layout.shadowOffset = 9;
    layout.shadowSoftness = 2;
    layout.shadowOpacity = 100;
    layout.shadowColor = 0xFF0000;
    for (int32_t falls : {0, 1}) {
        layout.shadowEnable = falls;
        ExpectPixels(Composed(source, layout, 200, 100, kSocialShadowOnSolid), [&](int32_t x, int32_t y) {
            if (x >= 20 && x < 180 && y >= 10 && y < 90) return DibGetPixel(small, x - 20, y - 10);
            const bool dark = falls != 0 && x >= 28 && x < 188 && y >= 18 && y < 98;
            return dark ? MixBytes(kBar, 0xFF0000, 100) : kBar;
        });
    }
    // A soft one is the blurred mask of the same place, near the border, too.
    struct Soft {
        int32_t width, depth, softness, x, y, pictureWidth, pictureHeight, shift;
    };
    for (const Soft &soft : {Soft{300, 200, 3, 15, 32, 270, 135, 12}, {120, 90, 20, 17, 23, 86, 43, 4}}) {
        layout.shadowSoftness = soft.softness;
        layout.shadowEnable = 1;
        const LockedDib shaded = Composed(source, layout, soft.width, soft.depth, kSocialShadowOnSolid);
        layout.shadowEnable = 0;
        const LockedDib bare = Composed(source, layout, soft.width, soft.depth, kSocialShadowOnSolid);
        const LockedDib mask(DibCreate(soft.width, soft.depth, nullptr, 24));
        DibFillRect(mask.View(), soft.x + soft.shift, soft.y + soft.shift, soft.pictureWidth, soft.pictureHeight,
                    0x646464);
        const LockedDib blurred(GaussianBlurDirect(mask, 200, soft.softness));
        ExpectPixels(shaded, [&](int32_t x, int32_t y) {
            const bool inside =
                x >= soft.x && x < soft.x + soft.pictureWidth && y >= soft.y && y < soft.y + soft.pictureHeight;
            if (inside) return DibGetPixel(bare, x, y);
            return MixBytes(DibGetPixel(bare, x, y), 0xFF0000, DibGetPixel(blurred, x, y) & 255);
        });
    }
}

TEST(SocialMedia, AFailedAllocationLeavesNothingBehind) {
    const LockedDib source = RandomPicture(20, 10, kModeTrueColor, 6);
    SocialLayout layout = PlainLayout();
    layout.blur = 10;
    layout.shadowEnable = 1;
    layout.shadowSoftness = 5;
    for (int32_t process = 0; process < 12; process++) {
        layout.gradientType = process % 4;
        const int64_t before = LiveBlocks();
        bool failed = true;
        for (int64_t n = 0; failed; n++) {
            FailAllocationAfter(n);
            const bool made = static_cast<bool>(Composed(source, layout, 51, 24, process));
            failed = FailedAllocations() > 0;
            FailAllocationAfter(-1);
            EXPECT_TRUE(made || failed) << process;
            ASSERT_EQ(LiveBlocks(), before) << process << " with " << n << " allocations";
        }
    }
}

TEST(SocialMedia, WhatLeavesNothingFails) {
    const LockedDib source = RandomPicture(20, 10, kModeTrueColor, 5);
    SocialLayout layout = PlainLayout();
    for (int32_t process = kSocialDoubleGradientBars; process <= kSocialSoftBarsReverseMirrored; process++)
        EXPECT_FALSE(Composed(source, layout, 40, 20, process)) << "bars without an area";
    EXPECT_TRUE(Composed(source, layout, 40, 20, kSocialSolidBars));
    layout.shadowSoftness = 20;
    EXPECT_FALSE(Composed(source, layout, 20, 20, kSocialShadowOnSolid)) << "no room for the shadow";
    for (int32_t process = 0; process < 12; process++) {
        EXPECT_FALSE(Composed(source, layout, 0, 20, process));
        EXPECT_FALSE(Composed(source, layout, 20, -1, process));
    }
    FilterContext context = MakeContext();
    context.destinationWidth = context.destinationDepth = 0;
    const DirectRun run(RowOf("Social Media"), source, LockedDib(), context);
    EXPECT_FALSE(run.good);
    EXPECT_EQ(run.context.errorCode, LMF_ERROR_MEMORY) << "nobody chose a destination";
}

} // namespace lmf::testing
