#include <cmath>
#include <cstdlib>
#include <utility>

#include "image/color/paper.h"
#include "image/core/dib_ops.h"
#include "support/pictures.h"

namespace lmf::testing {

TEST(PaperFill, FollowsTheMode) {
    Palette768 palette{};
    palette.rgb[9] = 200; // entry 3 is a red
    LockedDib picture = MakePalettePicture(1, 1, 8, palette);
    const ReadView lock = picture;
    EXPECT_EQ(PaperFillValue(0x123456, kModeTrueColor, lock), 0x123456u);
    EXPECT_EQ(PaperFillValue(0x646464, kModeGrey, lock), 100u) << "a neutral colour keeps its level";
    EXPECT_EQ(PaperFillValue(0x0000FF, kModeGrey, lock), 77u);
    EXPECT_EQ(PaperFillValue(0x0000F0, kModePalette, lock), 3u);
    EXPECT_EQ(PaperFillValue(0x646464, kModeMono, lock), 98u);
}

TEST(Flip, MirrorsColumnsUnlessTheDirectionIsOne) {
    const LockedDib picture = MakePicture(2, 2, 1, {1, 0, 1, 1});
    EXPECT_EQ(PixelsOf(RunKernel("Flip", picture)), (Pixels{0, 1, 1, 1}));
    EXPECT_EQ(PixelsOf(RunKernel("Flip", picture, {{&P::FilterFlipDirection, 1}})), (Pixels{1, 1, 1, 0}));
}

TEST(Crop, TakesBothOrdersAndNeverAnEmptyAxis) {
    struct Case {
        int32_t left, right;
        Pixels columns;
    };
    const LockedDib picture = MakePicture(5, 1, 8, {10, 11, 12, 13, 14});
    for (const Case &c :
         {Case{0, 4, {10, 11, 12, 13}}, Case{3, 1, {11, 12}}, Case{0, 0, {10}}, Case{4, 4, {13}}, Case{1, 1, {10}}}) {
        const std::vector<Setting> settings = {
            {&P::FilterCropLeft, c.left}, {&P::FilterCropRight, c.right}, {&P::FilterCropBottom, 0}};
        EXPECT_EQ(PixelsOf(RunKernel("Crop", picture, settings)), c.columns) << c.left;
    }
    FilterContext context = ContextWith({{&P::FilterCropLeft, 3}});
    context.width = 20;
    context.height = 10;
    EntryOf("Crop").filter->LoadSettings(&context);
    EXPECT_TRUE(context.FilterCropLeft == 0 && context.FilterCropRight == 19 && context.FilterCropBottom == 9)
        << "the page opens with the whole picture";
}

TEST(Tile, CoversWholeOrClippedSheets) {
    const LockedDib picture = RandomPicture(7, 5, kModeTrueColor, 3);
    const ReadView from = picture;
    for (int32_t integral : {0, 1}) {
        const LockedDib sheet = RunKernel(
            "Tile", picture, {{&P::FilterTileWide, 16}, {&P::FilterTileDeep, 4}, {&P::FilterTileIntegral, integral}});
        EXPECT_EQ(PixelsOf(sheet).size(), integral ? 21u * 5 : 16u * 5);
        ExpectPixels(sheet, [&](int32_t x, int32_t y) { return DibGetPixel(from, x % 7, y); });
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
    const LockedDib frame(DibCreateSolid(8, 6, 0x101010)),
        picture = PictureLike(frame, [](int32_t x, int32_t y) {
            return x >= 2 && x < 6 && (y == 2 || y == 3) ? 0x808080u : x == 7 && y == 3 ? 0x100510u : 0x101010u;
        });
    const Case kCases[] = {
        {0, 0, 0, true, true, true, true, 6, 2, 0x808080},     {0, 11, 0, true, true, true, true, 4, 2, 0x808080},
        {0, 11, 0, false, false, true, false, 8, 4, 0x101010}, {0, 255, 0, true, true, true, true, 1, 1, 0x101010},
        {1, 0, 3, true, false, false, true, 5, 3, 0x808080},   {1, 0, 1024, true, true, true, true, 1, 1, 0x101010},
        {2, 0, 34, true, true, false, true, 4, 4, 0x808080},   {2, 0, 50, true, false, true, false, 8, 1, 0x101010},
    };
    for (const Case &c : kCases) {
        const LockedDib trimmed = RunKernel("Trim", picture,
                                            {{&P::FilterTrimMode, c.mode},
                                             {&P::FilterTrimTol, c.tolerance},
                                             {&P::FilterTrimSize, c.sizeOrPercent},
                                             {&P::FilterTrimPercent, c.sizeOrPercent},
                                             {&P::FilterTrimNorth, c.north},
                                             {&P::FilterTrimEast, c.east},
                                             {&P::FilterTrimSouth, c.south},
                                             {&P::FilterTrimWest, c.west}});
        const ReadView lock = trimmed;
        EXPECT_TRUE(lock.width == c.width && lock.height == c.height) << &c - kCases;
        EXPECT_EQ(DibGetPixel(lock, 0, 0), c.corner) << &c - kCases;
    }
}

static FilterContext RotateContext(int32_t tenths, int32_t direction, bool byShears) {
    FilterContext context = ContextWith(
        {{&P::FilterRotateAngle, tenths}, {&P::FilterRotateDirection, direction}, {&P::FilterRotateShear, byShears}});
    context.paperColor = 0x00FF20;
    return context;
}

TEST(Rotate, TurnsByQuartersBothWays) {
    const LockedDib picture = MakePicture(3, 1, 8, {1, 2, 3});
    for (const auto &[tenths, direction, first] :
         {std::tuple{900, 0, 3u}, {900, 1, 1u}, {2700, 1, 3u}, {1800, 0, 3u}, {0, 0, 1u}}) {
        FilterContext context = RotateContext(tenths, direction, true);
        EXPECT_EQ(PixelsOf(RunKernel("Rotate", picture, &context)), (Pixels{first, 2, 4 - first})) << tenths;
        EXPECT_EQ(context.auxImage, nullptr);
    }
}

TEST(Rotate, AWholeTurnToTheRightGoesTheLongWayAndChangesNothing) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        const LockedDib picture = RandomPicture(14, 9, mode, 5);
        for (bool byShears : {false, true}) {
            FilterContext context = RotateContext(0, 1, byShears);
            EXPECT_TRUE(SamePicture(RunKernel("Rotate", picture, &context), picture));
            EXPECT_EQ(PixelsOf(LockedDib(context.auxImage)), Pixels(14 * 9, 255));
        }
    }
}

TEST(Rotate, FillsAndCoversWhatItShould) {
    LockedDib picture(DibCreateSolid(60, 40, 0xC06030));
    for (int32_t tenths : {1, 300, 449, 451, 1000, 2250, 3599}) {
        const double angle = tenths * 3.14159265358979 / 1800, c = std::cos(angle), s = std::sin(angle);
        for (int32_t kind = 0; kind < 6; kind++) {
            FilterContext context = RotateContext(tenths, 0, kind % 3 == 1);
            context.FilterRotateInterpolate = kind % 3 != 2;
            context.FilterRotatePreserve = kind >= 3;
            LockedDib rotated = RunKernel("Rotate", picture, &context), coverage(context.auxImage);
            const ReadView lock = rotated, mask = coverage;
            const int32_t width = lock.width, height = lock.height;
            EXPECT_NEAR(width, kind >= 3 ? 60 : 60 * std::fabs(c) + 40 * std::fabs(s) + 0.5, 0.51);
            EXPECT_NEAR(height, kind >= 3 ? 40 : 40 * std::fabs(c) + 60 * std::fabs(s) + 0.5, 0.51);
            ForEachPixel(lock, [&](int32_t x, int32_t y) {
                const double right = x + 0.5 - width / 2.0, down = y + 0.5 - height / 2.0;
                const double depth =
                    std::min(30 - std::fabs(c * right - s * down), 20 - std::fabs(s * right + c * down));
                const uint32_t color = DibGetPixel(lock, x, y), cover = DibGetPixel(mask, x, y);
                if (depth > 0.51) {
                    ASSERT_TRUE(color == 0xC06030 && cover == 255) << tenths << " kind " << kind;
                } else if (depth < -0.51) {
                    ASSERT_TRUE(color == 0x00FF20 && cover == 0) << tenths << " kind " << kind;
                } else if (kind % 3 != 2) {
                    ASSERT_NEAR(RedOf(color), (0x30 * cover + 0x20 * (255 - cover)) / 255.0, 1.0);
                }
            });
        }
    }
}

TEST(Rotate, EveryDepthMovesAlike) {
    LockedDib grey = RandomPicture(150, 83, kModeGrey, 9), color(DibToRgb(grey));
    for (const char *filter : {"Rotate", "Shear", "Seamless"}) {
        for (int32_t kind = 0; kind < 3; kind++) {
            FilterContext context = RotateContext(2137 + kind, kind & 1, kind == 1);
            context.FilterRotateInterpolate = kind != 2;
            context.FilterSeamlessMaintain = kind & 1;
            context.paperColor = 0x606060;
            LockedDib greyResult = RunKernel(filter, grey, &context);
            LockedDib greyCoverage(std::exchange(context.auxImage, nullptr));
            LockedDib colorResult = RunKernel(filter, color, &context), coverage(context.auxImage);
            LockedDib expected(DibToRgb(greyResult));
            EXPECT_TRUE(SamePicture(colorResult, expected)) << filter << " " << kind;
            EXPECT_TRUE(!coverage || SamePicture(coverage, greyCoverage)) << filter << " " << kind;
        }
    }
}

TEST(Rotate, MaximumQualityKeepsFineDetail) {
    const LockedDib blank(DibCreateSolid(100, 100, 0)),
        picture = PictureLike(blank, [](int32_t x, int32_t y) {
            return static_cast<uint32_t>(128 + 60 * std::sin(x * 1.9) + 60 * std::cos(y * 1.3)) * 0x010101;
        });
    // Mean difference to the middle of a picture of fine stripes after a turn to the left and back.
    const auto error = [&](int32_t tenths, bool byShears) {
        LockedDib turned(DibClone(picture));
        for (int32_t direction : {0, 1}) {
            FilterContext context = RotateContext(tenths, direction, byShears);
            context.FilterRotatePreserve = 1;
            turned = RunKernel("Rotate", turned, &context);
            BlockFree(context.auxImage);
        }
        const Pixels before = PixelsOf(picture), after = PixelsOf(turned);
        double sum = 0;
        for (size_t i = 3500; i < 6500; i++)
            if (i % 100 >= 35 && i % 100 < 65) sum += std::abs(GreenOf(before[i]) - GreenOf(after[i])) / 900.0;
        return sum;
    };
    for (int32_t tenths : {300, 1200, 77}) EXPECT_LT(error(tenths, true), error(tenths, false) / 3);
}

TEST(Shear, LeansWithoutCutting) {
    LockedDib picture(DibCreateSolid(30, 21, 0x405060));
    const auto shear = [&](int32_t x, int32_t y) {
        FilterContext context = ContextWith({{&P::FilterShearDegreeX, 30 + x}, {&P::FilterShearDegreeY, 30 + y}});
        context.paperColor = 0;
        return RunKernel("Shear", picture, &context);
    };
    EXPECT_TRUE(SamePicture(shear(0, 0), picture));
    for (const auto &[x, y] : {std::pair{20, 0}, {0, -30}, {-13, 30}}) {
        LockedDib leaning = shear(x, y);
        const ReadView lock = leaning;
        EXPECT_EQ(lock.width, x == 0 ? 30 : 30 + 2 * std::ceil(10 * std::tan(std::abs(x) * M_PI / 180)));
        EXPECT_EQ(lock.height > 21, y != 0);
        double sum = 0;
        for (uint32_t pixel : PixelsOf(leaning)) sum += RedOf(pixel) / 96.0;
        EXPECT_NEAR(sum, 30 * 21, 4) << "all of the picture is there";
        // The corner that leans away: top left when the top goes right, and so on.
        EXPECT_EQ(DibGetPixel(lock, x > 0 || y < 0 ? 0 : lock.width - 1, 0), 0u);
    }
}

/// Mean step between neighbouring columns, across the seam where copies join and elsewhere.
static void MeasureSteps(const LockedDib &tile, double *seam, double *inside) {
    const ReadView lock = tile;
    const int32_t width = lock.width;
    *seam = *inside = 0;
    ForEachPixel(lock, [&](int32_t x, int32_t y) {
        const int32_t a = RedOf(DibGetPixel(lock, x, y)), b = RedOf(DibGetPixel(lock, (x + 1) % width, y));
        (x + 1 == width ? *seam : *inside) += std::abs(a - b) / static_cast<double>(lock.height);
    });
    *inside /= std::max(width - 1, 1);
}

TEST(Seamless, SeamsAreNoRougherThanTheInside) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette}) {
        for (int32_t size : {64, 65}) {
            const LockedDib noise = RandomPicture(size, size, mode, 3);
            const LockedDib picture = PictureLike(
                noise, [](int32_t x, int32_t y) { return static_cast<uint32_t>(x * 3 + y / 2) * 0x010101; });
            for (int32_t maintain : {0, 1}) {
                const LockedDib tile = RunKernel("Seamless", picture, {{&P::FilterSeamlessMaintain, maintain}});
                const auto side = static_cast<size_t>(maintain ? size : (size + 1) / 2);
                EXPECT_EQ(PixelsOf(tile).size(), side * side);
                double seam = 0, plainSeam = 0, inside = 0, blended = 0;
                MeasureSteps(picture, &plainSeam, &inside);
                MeasureSteps(tile, &seam, &blended);
                EXPECT_LE(seam, std::max(inside, blended)) << mode << " " << size << " " << maintain;
                EXPECT_GT(plainSeam, 5 * seam);
            }
        }
    }
}

TEST(Seamless, PalettesChooseAndOnePixelStays) {
    const LockedDib indexes = MakePicture(4, 4, 8, {7, 7, 90, 90, 7, 7, 90, 90, 201, 201, 3, 3, 201, 201, 3, 3});
    FilterContext context = MakeContext(kModePalette);
    for (uint32_t pixel : PixelsOf(RunKernel("Seamless", indexes, &context, true)))
        EXPECT_TRUE(pixel == 7 || pixel == 90 || pixel == 201 || pixel == 3) << pixel;
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        const LockedDib dot = RandomPicture(1, 1, mode, 3);
        for (int32_t maintain : {0, 1})
            EXPECT_TRUE(SamePicture(RunKernel("Seamless", dot, {{&P::FilterSeamlessMaintain, maintain}}), dot));
    }
}

} // namespace lmf::testing
