#include <cmath>
#include <cstdlib>
#include <utility>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "image/dib_ops.h"
#include "image/paper.h"
#include "support/pictures.h"

namespace lmf::testing {

using Pixels = std::vector<uint32_t>;

TEST(PaperFill, FollowsTheMode) {
    Palette768 palette{};
    palette.rgb[9] = 200; // entry 3 is a red
    DibOwner picture = MakePalettePicture(1, 1, 8, palette);
    DibLock lock(picture.handle);
    EXPECT_EQ(PaperFillValue(0x123456, kModeTrueColor, lock.image), 0x123456u);
    EXPECT_EQ(PaperFillValue(0x646464, kModeGrey, lock.image), 100u) << "a neutral colour keeps its level";
    EXPECT_EQ(PaperFillValue(0x0000FF, kModeGrey, lock.image), 77u);
    EXPECT_EQ(PaperFillValue(0x0000F0, kModePalette, lock.image), 3u);
    EXPECT_EQ(PaperFillValue(0x646464, kModeMono, lock.image), 98u);
}

TEST(Flip, MirrorsColumnsUnlessTheDirectionIsOne) {
    DibOwner picture = MakePicture(2, 2, 1, {1, 0, 1, 1});
    FilterContext context = MakeContext();
    EXPECT_EQ(PixelsOf(RunKernel("Flip", picture.handle, &context).handle), (Pixels{0, 1, 1, 1}));
    context.FilterFlipDirection = 1;
    EXPECT_EQ(PixelsOf(RunKernel("Flip", picture.handle, &context).handle), (Pixels{1, 1, 1, 0}));
}

TEST(Crop, TakesBothOrdersAndNeverAnEmptyAxis) {
    struct Case {
        int32_t left, right;
        Pixels columns;
    };
    DibOwner picture = MakePicture(5, 1, 8, {10, 11, 12, 13, 14});
    for (const Case &c :
         {Case{0, 4, {10, 11, 12, 13}}, Case{3, 1, {11, 12}}, Case{0, 0, {10}}, Case{4, 4, {13}}, Case{1, 1, {10}}}) {
        FilterContext context = MakeContext();
        context.FilterCropLeft = c.left;
        context.FilterCropRight = c.right;
        context.FilterCropBottom = 0;
        EXPECT_EQ(PixelsOf(RunKernel("Crop", picture.handle, &context).handle), c.columns) << c.left;
    }
}

TEST(Crop, OpensWithTheWholePicture) {
    FilterContext context = MakeContext();
    context.width = 20;
    context.height = 10;
    context.FilterCropLeft = 3;
    for (const FilterEntry &entry : FilterCatalogue)
        if (std::string("Crop") == entry.name) entry.slots->LoadSettings(&context);
    EXPECT_EQ(context.FilterCropLeft, 0);
    EXPECT_EQ(context.FilterCropRight, 19);
    EXPECT_EQ(context.FilterCropBottom, 9);
}

TEST(Tile, CoversWholeOrClippedSheets) {
    DibOwner picture = RandomPicture(7, 5, kModeTrueColor, 3);
    const Pixels pixels = PixelsOf(picture.handle);
    for (int32_t integral : {0, 1}) {
        FilterContext context = MakeContext();
        context.FilterTileWide = 16;
        context.FilterTileDeep = 4;
        context.FilterTileIntegral = integral;
        DibOwner sheet = RunKernel("Tile", picture.handle, &context);
        DibLock lock(sheet.handle);
        ASSERT_EQ(lock.view.width, integral ? 21 : 16);
        ASSERT_EQ(lock.view.height, 5);
        for (int32_t x = 0; x < lock.view.width; x++)
            ASSERT_EQ(DibGetPixel(lock.image, x, 3), pixels[static_cast<size_t>(3 * 7 + x % 7)]);
    }
}

TEST(Trim, DropsWhatTheModeAsksFor) {
    struct Case {
        int32_t mode, tolerance, sizeOrPercent;
        bool north, east, south, west;
        int32_t width, height;
        uint32_t corner;
    };
    // A frame of 0x101010 with one darker speck in its right column, around 4 x 2 pixels of 0x808080.
    DibOwner picture(DibCreateSolid(8, 6, 0x101010));
    {
        DibLock lock(picture.handle);
        DibFillRect(lock.image, 2, 2, 4, 2, 0x808080);
        DibSetPixel(lock.image, 7, 3, 0x100510);
    }
    const Case kCases[] = {
        {0, 0, 0, true, true, true, true, 6, 2, 0x808080},     {0, 11, 0, true, true, true, true, 4, 2, 0x808080},
        {0, 11, 0, false, false, true, false, 8, 4, 0x101010}, {0, 255, 0, true, true, true, true, 1, 1, 0x101010},
        {1, 0, 3, true, false, false, true, 5, 3, 0x808080},   {1, 0, 1024, true, true, true, true, 1, 1, 0x101010},
        {2, 0, 34, true, true, false, true, 4, 4, 0x808080},   {2, 0, 50, true, false, true, false, 8, 1, 0x101010},
    };
    for (const Case &c : kCases) {
        FilterContext context = MakeContext();
        context.FilterTrimMode = c.mode;
        context.FilterTrimTol = c.tolerance;
        context.FilterTrimSize = context.FilterTrimPercent = c.sizeOrPercent;
        context.FilterTrimNorth = c.north;
        context.FilterTrimEast = c.east;
        context.FilterTrimSouth = c.south;
        context.FilterTrimWest = c.west;
        DibOwner trimmed = RunKernel("Trim", picture.handle, &context);
        DibLock lock(trimmed.handle);
        EXPECT_EQ(lock.view.width, c.width) << &c - kCases;
        EXPECT_EQ(lock.view.height, c.height) << &c - kCases;
        EXPECT_EQ(DibGetPixel(lock.image, 0, 0), c.corner) << &c - kCases;
    }
}

static FilterContext RotateContext(int32_t tenths, int32_t direction, bool byShears) {
    FilterContext context = MakeContext();
    context.FilterRotateAngle = tenths;
    context.FilterRotateDirection = direction;
    context.FilterRotateShear = byShears;
    context.paperColor = 0x00FF20;
    return context;
}

TEST(Rotate, TurnsByQuartersBothWays) {
    DibOwner picture = MakePicture(3, 1, 8, {1, 2, 3});
    for (const auto &[tenths, direction, first] : {std::tuple{900, 0, 3u}, {900, 1, 1u}, {2700, 1, 3u}}) {
        FilterContext context = RotateContext(tenths, direction, true);
        DibOwner turned = RunKernel("Rotate", picture.handle, &context);
        EXPECT_EQ(PixelsOf(turned.handle), (Pixels{first, 2, 4 - first}));
        EXPECT_EQ(context.auxImage, nullptr);
    }
    FilterContext context = RotateContext(0, 0, true);
    EXPECT_TRUE(SamePicture(RunKernel("Rotate", picture.handle, &context).handle, picture.handle));
}

TEST(Rotate, AWholeTurnToTheRightGoesTheLongWayAndChangesNothing) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        DibOwner picture = RandomPicture(14, 9, mode, 5);
        for (bool byShears : {false, true}) {
            FilterContext context = RotateContext(0, 1, byShears);
            EXPECT_TRUE(SamePicture(RunKernel("Rotate", picture.handle, &context).handle, picture.handle));
            DibOwner coverage(context.auxImage);
            EXPECT_EQ(PixelsOf(coverage.handle), Pixels(14 * 9, 255));
        }
    }
}

TEST(Rotate, FillsAndCoversWhatItShould) {
    DibOwner picture(DibCreateSolid(60, 40, 0xC06030));
    for (int32_t tenths : {1, 300, 449, 451, 1000, 2250, 3599}) {
        const double angle = tenths * 3.14159265358979 / 1800, c = std::cos(angle), s = std::sin(angle);
        for (int32_t kind = 0; kind < 6; kind++) {
            FilterContext context = RotateContext(tenths, 0, kind % 3 == 1);
            context.FilterRotateInterpolate = kind % 3 != 2;
            context.FilterRotatePreserve = kind >= 3;
            DibOwner rotated = RunKernel("Rotate", picture.handle, &context), coverage(context.auxImage);
            DibLock lock(rotated.handle), mask(coverage.handle);
            const int32_t width = lock.view.width, height = lock.view.height;
            EXPECT_NEAR(width, kind >= 3 ? 60 : 60 * std::fabs(c) + 40 * std::fabs(s) + 0.5, 0.51);
            EXPECT_NEAR(height, kind >= 3 ? 40 : 40 * std::fabs(c) + 60 * std::fabs(s) + 0.5, 0.51);
            for (int32_t y = 0; y < height; y++) {
                for (int32_t x = 0; x < width; x++) {
                    const double right = x + 0.5 - width / 2.0, down = y + 0.5 - height / 2.0;
                    const double depth =
                        std::min(30 - std::fabs(c * right - s * down), 20 - std::fabs(s * right + c * down));
                    const uint32_t color = DibGetPixel(lock.image, x, y), cover = DibGetPixel(mask.image, x, y);
                    if (depth > 0.51) {
                        ASSERT_TRUE(color == 0xC06030 && cover == 255) << tenths << " kind " << kind;
                    } else if (depth < -0.51) {
                        ASSERT_TRUE(color == 0x00FF20 && cover == 0) << tenths << " kind " << kind;
                    } else if (kind % 3 != 2) {
                        ASSERT_NEAR(RedOf(color), (0x30 * cover + 0x20 * (255 - cover)) / 255.0, 1.0);
                    }
                }
            }
        }
    }
}

TEST(Rotate, EveryDepthMovesAlike) {
    DibOwner grey = RandomPicture(150, 83, kModeGrey, 9), color(DibToRgb(grey.handle));
    for (const char *filter : {"Rotate", "Shear", "Seamless"}) {
        for (int32_t kind = 0; kind < 3; kind++) {
            FilterContext context = RotateContext(2137 + kind, kind & 1, kind == 1);
            context.FilterRotateInterpolate = kind != 2;
            context.FilterSeamlessMaintain = kind & 1;
            context.paperColor = 0x606060;
            DibOwner greyResult = RunKernel(filter, grey.handle, &context);
            DibOwner greyCoverage(std::exchange(context.auxImage, nullptr));
            DibOwner colorResult = RunKernel(filter, color.handle, &context), coverage(context.auxImage);
            DibOwner expected(DibToRgb(greyResult.handle));
            EXPECT_TRUE(SamePicture(colorResult.handle, expected.handle)) << filter << " " << kind;
            EXPECT_TRUE(!coverage || SamePicture(coverage.handle, greyCoverage.handle)) << filter << " " << kind;
        }
    }
}

/// Mean difference to the middle of a picture of fine stripes after a turn to the left and back.
static double ErrorOfTurnAndBack(DibHandle picture, int32_t tenths, bool byShears) {
    FilterContext there = RotateContext(tenths, 0, byShears), back = RotateContext(tenths, 1, byShears);
    there.FilterRotatePreserve = back.FilterRotatePreserve = 1;
    DibOwner turned = RunKernel("Rotate", picture, &there), restored = RunKernel("Rotate", turned.handle, &back);
    BlockFree(there.auxImage);
    BlockFree(back.auxImage);
    DibLock before(picture), after(restored.handle);
    double sum = 0;
    for (int32_t y = 35; y < 65; y++) {
        for (int32_t x = 35; x < 65; x++) {
            const uint32_t a = DibGetPixel(before.image, x, y), b = DibGetPixel(after.image, x, y);
            sum += std::abs(GreenOf(a) - GreenOf(b)) / 900.0;
        }
    }
    return sum;
}

TEST(Rotate, MaximumQualityKeepsFineDetail) {
    DibOwner picture(DibCreateSolid(100, 100, 0));
    {
        DibLock lock(picture.handle);
        for (int32_t y = 0; y < 100; y++) {
            for (int32_t x = 0; x < 100; x++) {
                const auto wave = static_cast<uint32_t>(128 + 60 * std::sin(x * 1.9) + 60 * std::cos(y * 1.3));
                DibSetPixel(lock.image, x, y, PackColor(wave, wave, wave));
            }
        }
    }
    for (int32_t tenths : {300, 1200, 77})
        EXPECT_LT(ErrorOfTurnAndBack(picture.handle, tenths, true),
                  ErrorOfTurnAndBack(picture.handle, tenths, false) / 3);
}

TEST(Shear, LeansWithoutCutting) {
    DibOwner picture(DibCreateSolid(30, 21, 0x405060));
    const auto shear = [&](int32_t x, int32_t y) {
        FilterContext context = MakeContext();
        context.FilterShearDegreeX = 30 + x;
        context.FilterShearDegreeY = 30 + y;
        context.paperColor = 0;
        return RunKernel("Shear", picture.handle, &context);
    };
    EXPECT_TRUE(SamePicture(shear(0, 0).handle, picture.handle));
    for (const auto &[x, y] : {std::pair{20, 0}, {0, -30}, {-13, 30}}) {
        DibOwner leaning = shear(x, y);
        DibLock lock(leaning.handle);
        EXPECT_EQ(lock.view.width, x == 0 ? 30 : 30 + 2 * std::ceil(10 * std::tan(std::abs(x) * M_PI / 180)));
        EXPECT_EQ(lock.view.height > 21, y != 0);
        double sum = 0;
        for (uint32_t pixel : PixelsOf(leaning.handle)) sum += RedOf(pixel) / 96.0;
        EXPECT_NEAR(sum, 30 * 21, 4) << "all of the picture is there";
        // The corner that leans away: top left when the top goes right, and so on.
        EXPECT_EQ(DibGetPixel(lock.image, x > 0 || y < 0 ? 0 : lock.view.width - 1, 0), 0u);
    }
}

/// Mean step between neighbouring columns, across the seam where copies join and elsewhere.
static void MeasureSteps(DibHandle tile, double *seam, double *inside) {
    DibLock lock(tile);
    const int32_t width = lock.view.width, height = lock.view.height;
    *seam = *inside = 0;
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            const int32_t a = RedOf(DibGetPixel(lock.image, x, y)),
                          b = RedOf(DibGetPixel(lock.image, (x + 1) % width, y));
            (x + 1 == width ? *seam : *inside) += std::abs(a - b) / static_cast<double>(height);
        }
    }
    *inside /= std::max(width - 1, 1);
}

TEST(Seamless, SeamsAreNoRougherThanTheInside) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette}) {
        for (int32_t size : {64, 65}) {
            DibOwner picture = RandomPicture(size, size, mode, 3);
            {
                DibLock lock(picture.handle);
                for (int32_t y = 0; y < size; y++) {
                    for (int32_t x = 0; x < size; x++)
                        DibSetPixel(lock.image, x, y, static_cast<uint32_t>(x * 3 + y / 2) * 0x010101);
                }
            }
            for (int32_t maintain : {0, 1}) {
                FilterContext context = MakeContext();
                context.FilterSeamlessMaintain = maintain;
                DibOwner tile = RunKernel("Seamless", picture.handle, &context);
                int32_t width = 0, height = 0;
                ASSERT_EQ(DibInfo(tile.handle, &width, &height, nullptr, nullptr), 1);
                EXPECT_EQ(width, maintain ? size : (size + 1) / 2);
                EXPECT_EQ(height, width);
                double seam = 0, plainSeam = 0, inside = 0, blended = 0;
                MeasureSteps(picture.handle, &plainSeam, &inside);
                MeasureSteps(tile.handle, &seam, &blended);
                EXPECT_LE(seam, std::max(inside, blended)) << mode << " " << size << " " << maintain;
                EXPECT_GT(plainSeam, 5 * seam);
            }
        }
    }
}

TEST(Seamless, PalettesChooseAndOnePixelStays) {
    DibOwner indexes = MakePicture(4, 4, 8, {7, 7, 90, 90, 7, 7, 90, 90, 201, 201, 3, 3, 201, 201, 3, 3});
    FilterContext context = MakeContext(kModePalette);
    for (uint32_t pixel : PixelsOf(RunKernel("Seamless", indexes.handle, &context, true).handle))
        EXPECT_TRUE(pixel == 7 || pixel == 90 || pixel == 201 || pixel == 3) << pixel;
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        DibOwner dot = RandomPicture(1, 1, mode, 3);
        for (context.FilterSeamlessMaintain = 0; context.FilterSeamlessMaintain < 2; context.FilterSeamlessMaintain++)
            EXPECT_TRUE(SamePicture(RunKernel("Seamless", dot.handle, &context).handle, dot.handle)) << mode;
    }
}

} // namespace lmf::testing
