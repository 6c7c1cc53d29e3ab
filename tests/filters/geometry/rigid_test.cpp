#include <cmath>
#include <numbers>

#include "image/color/paper.h"
#include "image/core/dib_ops.h"
#include "image/scale/nearest.h"
#include "image/scale/resample.h"
#include "support/reference.h"

namespace lmf::testing {

TEST(PaperFill, FollowsTheMode) {
    Palette768 palette{};
    palette.rgb[9] = 200; // entry 3 is a red
    const LockedDib lock = MakePalettePicture(1, 1, 8, palette);
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
    const LockedDib picture = MakePicture(5, 1, 8, {10, 11, 12, 13, 14});
    for (const auto &[left, right, columns] :
         {std::tuple{0, 4, Pixels{10, 11, 12, 13}}, {3, 1, {11, 12}}, {0, 0, {10}}, {4, 4, {13}}, {1, 1, {10}}}) {
        const std::vector<Setting> settings = {
            {&P::FilterCropLeft, left}, {&P::FilterCropRight, right}, {&P::FilterCropBottom, 0}};
        EXPECT_EQ(PixelsOf(RunKernel("Crop", picture, settings)), columns) << left;
    }
    FilterContext context = ContextWith({{&P::FilterCropLeft, 3}});
    context.width = 20;
    context.height = 10;
    LoadPage(*EntryOf("Crop").filter, context);
    EXPECT_TRUE(context.FilterCropLeft == 0 && context.FilterCropRight == 19 && context.FilterCropBottom == 9)
        << "the page opens with the whole picture";
}

TEST(Tile, CoversWholeOrClippedSheets) {
    for (const auto &[width, height, integral, pixels] :
         {std::tuple{7, 5, 0, 16u * 18}, {7, 5, 1, 21u * 20}, {30, 16, 0, 30u * 18}, {30, 16, 1, 30u * 32}}) {
        const LockedDib picture = RandomPicture(width, height, width == 7 ? kModeTrueColor : kModeGrey, 3);
        const std::vector<Setting> settings = {
            {&P::FilterTileWide, 16}, {&P::FilterTileDeep, 18}, {&P::FilterTileIntegral, integral}};
        const LockedDib sheet = RunKernel("Tile", picture, settings);
        EXPECT_EQ(PixelsOf(sheet).size(), pixels);
        ExpectPixels(sheet,
                     [&, w = width, h = height](int32_t x, int32_t y) { return DibGetPixel(picture, x % w, y % h); });
    }
}

TEST(Trim, DropsWhatTheModeAsksFor) {
    // A frame of 0x101010 with one darker speck in its right column, around 4 x 2 pixels of 0x808080.
    const LockedDib frame(DibCreateSolid(8, 6, 0x101010)),
        picture = PictureLike(frame, [](int32_t x, int32_t y) {
            return x >= 2 && x < 6 && (y == 2 || y == 3) ? 0x808080u : x == 7 && y == 3 ? 0x100510u : 0x101010u;
        });
    const struct {
        int32_t mode, tolerance, sizeOrPercent, north, east, south, west, width, height;
        Color corner;
    } kCases[] = {
        {0, 0, 0, 1, 1, 1, 1, 6, 2, 0x808080},  {0, 11, 0, 1, 1, 1, 1, 4, 2, 0x808080},
        {0, 11, 0, 0, 0, 1, 0, 8, 4, 0x101010}, {0, 255, 0, 1, 1, 1, 1, 1, 1, 0x101010},
        {1, 0, 3, 1, 0, 0, 1, 5, 3, 0x808080},  {1, 0, 1024, 1, 1, 1, 1, 1, 1, 0x101010},
        {2, 0, 34, 1, 1, 0, 1, 4, 4, 0x808080}, {2, 0, 50, 1, 0, 1, 0, 8, 1, 0x101010},
    };
    for (const auto &c : kCases) {
        const std::vector<Setting> settings = {
            {&P::FilterTrimMode, c.mode},          {&P::FilterTrimTol, c.tolerance},
            {&P::FilterTrimSize, c.sizeOrPercent}, {&P::FilterTrimPercent, c.sizeOrPercent},
            {&P::FilterTrimNorth, c.north},        {&P::FilterTrimEast, c.east},
            {&P::FilterTrimSouth, c.south},        {&P::FilterTrimWest, c.west}};
        const LockedDib trimmed = RunKernel("Trim", picture, settings);
        const ReadView lock = trimmed;
        EXPECT_TRUE(lock.width == c.width && lock.height == c.height) << &c - kCases;
        EXPECT_EQ(DibGetPixel(lock, 0, 0), c.corner) << &c - kCases;
    }
}

namespace {

/// The pixel whose bytes are byte(shift).
template <typename Byte>
uint32_t ByBytes(Byte byte) {
    return byte(0) | byte(8) << 8 | byte(16) << 16 | byte(24) << 24;
}

/// Lines of one axis leaning about the middle one: pixel `at` of the result from a line whose pixels are read(i).
struct Lean {
    double slope, middle;
    int32_t margin;

    Lean(int32_t stored, int32_t lines)
        : slope(std::tan((stored - 30) * std::numbers::pi / 180)), middle((lines - 1) / 2.0),
          margin(static_cast<int32_t>(std::ceil(std::fabs(slope) * middle))) {}

    template <typename Read>
    uint32_t Pixel(double distance, int32_t at, Read read) const {
        const auto whole = static_cast<int32_t>(std::floor(distance)), first = at - margin - whole;
        const auto share = static_cast<uint32_t>((distance - whole) * 255);
        const uint32_t a = read(first), b = read(first - 1);
        return ByBytes(
            [=](int32_t i) { return ((a >> i & 255) * (255 - share) + (b >> i & 255) * share + 127) / 255; });
    }
};

/// Rows first, then columns; what the picture does not cover is fill, before and after.
LockedDib Leaning(const ReadView &source, const FilterContext &context) {
    const uint32_t fill = PaperFillValue(context.paperColor, context.mode, source);
    const auto read = [&](const ReadView &from, int32_t x, int32_t y) {
        return x < 0 || x >= from.width || y < 0 || y >= from.height ? fill : DibGetPixel(from, x, y);
    };
    const Lean across(context.FilterShearDegreeX, source.height);
    const LockedDib wide(DibCreateLike(source, source.width + 2 * across.margin, source.height));
    const LockedDib rows = PictureLike(wide, [&](int32_t x, int32_t y) {
        return across.Pixel(across.slope * (across.middle - y), x, [&](int32_t i) { return read(source, i, y); });
    });
    const Lean down(context.FilterShearDegreeY, rows.View().width);
    const LockedDib high(DibCreateLike(source, rows.View().width, source.height + 2 * down.margin));
    return PictureLike(high, [&](int32_t x, int32_t y) {
        return down.Pixel(down.slope * (x - down.middle), y, [&](int32_t i) { return read(rows, x, i); });
    });
}

/// Position i of a half of this many positions: the part of the near half, in 256ths.
uint32_t NearShare(int32_t i, int32_t side) {
    const double t = (i + 0.5) / side;
    return static_cast<uint32_t>(t * t * (3 - 2 * t) * 256 + 0.5);
}

/// The level of an ordered 4 x 4 dither, drawn together to 88 .. 168.
uint32_t Threshold(int32_t x, int32_t y) {
    static constexpr uint32_t kBayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    return (kBayer[y & 3][x & 3] * 32 + 3) / 6 + 88;
}

LockedDib Seamless(const ReadView &from, const FilterContext &context) {
    const int32_t width = (from.width + 1) / 2, height = (from.height + 1) / 2;
    const int32_t right = from.width - width, below = from.height - height;
    const LockedDib half(DibCreateLike(from, width, height));
    const bool mixes = context.mode == kModeTrueColor || context.mode == kModeGrey;
    return PictureLike(half, [&](int32_t x, int32_t y) {
        const uint32_t across = NearShare(x, width), down = NearShare(y, height);
        if (!mixes)
            return DibGetPixel(from, across > Threshold(x, y) ? x : x + right,
                               down > Threshold(y, 3 - (x & 3)) ? y : y + below);
        return ByBytes([&](int32_t shift) {
            const auto row = [&](int32_t line) {
                return (DibGetPixel(from, x + right, line) >> shift & 255) * (256 - across) +
                       (DibGetPixel(from, x, line) >> shift & 255) * across;
            };
            return (row(y + below) * (256 - down) + row(y) * down + 32768) >> 16;
        });
    });
}

/// Back at the size of the picture: interpolated, or doubled and cut.
LockedDib SeamlessMaintained(const ReadView &from, const FilterContext &context) {
    const LockedDib half = Seamless(from, context);
    if (context.mode == kModeTrueColor || context.mode == kModeGrey)
        return LockedDib(DibScaleTo(half, from.width, from.height, kWindowAutomatic));
    return LockedDib(DibCropRect(LockedDib(DibScaleNearest(half, 200, 200)), 0, 0, from.width, from.height));
}

} // namespace

TEST(Shear, AgreesWithItsDefinition) {
    ExpectDefinition("Shear", {{Kind::Color, Kind::Alpha, Kind::Grey}}, Leaning);
    const LockedDib picture = MakePicture(3, 3, 8, {10, 20, 30, 40, 50, 60, 70, 80, 90});
    FilterContext context = ContextWith({{&P::FilterShearDegreeX, 60}, {&P::FilterShearDegreeY, 30}});
    context.paperColor = 0;
    // The tangent of 30 degrees is 147 of 255 parts of a pixel to the right, or a whole one to the left less 108.
    EXPECT_EQ(PixelsOf(RunKernel("Shear", picture, context)),
              (Pixels{0, 4, 14, 24, 17, 0, 40, 50, 60, 0, 41, 76, 86, 38, 0}));
}

TEST(Seamless, AgreesWithItsDefinition) {
    const std::vector<Kind> all = {Kind::Color, Kind::Alpha, Kind::Grey, Kind::Palette, Kind::Mono};
    ExpectDefinition("Seamless", {all, {}, {{&P::FilterSeamlessMaintain, 0}}}, Seamless);
    ExpectDefinition("Seamless", {all, {}, {{&P::FilterSeamlessMaintain, 1}}}, SeamlessMaintained);
}

} // namespace lmf::testing
