// Rotate against slow definitions of its three ways: nearest pixels, four neighbours, three shears.
#include <cmath>
#include <numbers>

#include "image/color/paper.h"
#include "image/geometry/turns.h"
#include "support/pictures.h"

namespace lmf::testing {
namespace {

/// A result of Rotate and its coverage.
struct Rotated {
    LockedDib picture, coverage;

    Rotated(const ReadView &source, const std::vector<Setting> &settings) {
        FilterContext context = ContextWith(settings);
        context.paperColor = 0x00FF20;
        picture = RunKernel("Rotate", source, context);
        coverage = LockedDib(context.auxImage);
    }
};

constexpr int64_t kOne = int64_t{1} << 30;

/// The way back from pixels of a result of this size to the source.
struct WayBack {
    double sine, cosine;
    int32_t width, height;
    ReadView from;

    /// Where the centre of a pixel comes from along one axis, in 2^-30 pixels: whole steps from the row's first pixel.
    int64_t Along(double alongX, double alongY, int32_t side, int32_t x, int32_t y) const {
        const double across = 0.5 - width / 2.0, down = y + 0.5 - height / 2.0;
        return std::llround((alongX * across + alongY * down + side / 2.0) * kOne) + x * std::llround(alongX * kOne);
    }
    int64_t X(int32_t x, int32_t y) const { return Along(cosine, -sine, from.width, x, y); }
    int64_t Y(int32_t x, int32_t y) const { return Along(sine, cosine, from.height, x, y); }
    /// Parts of 255 of the pixel that the source covers.
    uint32_t Coverage(int32_t x, int32_t y) const {
        const auto overlap = [](int64_t position, int64_t side) {
            const int64_t depth = std::min(position, side * kOne - position) + kOne / 2;
            return static_cast<double>(std::clamp<int64_t>(depth, 0, kOne)) / static_cast<double>(kOne);
        };
        return static_cast<uint32_t>(overlap(X(x, y), from.width) * overlap(Y(x, y), from.height) * 255 + 0.5);
    }
    bool Holds(int32_t x, int32_t y) const {
        return X(x, y) >= 0 && X(x, y) < from.width * kOne && Y(x, y) >= 0 && Y(x, y) < from.height * kOne;
    }
};

/// A pixel whose channels are channel(shift).
template <typename Channel>
uint32_t PixelOf(Channel channel) {
    uint32_t pixel = 0;
    for (int32_t shift = 0; shift < 32; shift += 8) pixel |= static_cast<uint32_t>(channel(shift)) << shift;
    return pixel;
}

/// Four neighbours in 256ths, the outermost pixels standing in for those that are missing.
uint32_t MixedPixel(const WayBack &back, int32_t x, int32_t y) {
    const int64_t u = back.X(x, y) - kOne / 2, v = back.Y(x, y) - kOne / 2;
    const int64_t wx = (u >> 22) & 255, wy = (v >> 22) & 255;
    return PixelOf([&](int32_t shift) {
        const auto read = [&](int32_t right, int32_t below) -> int64_t {
            const int32_t column = std::clamp(static_cast<int32_t>(u >> 30) + right, 0, back.from.width - 1);
            const int32_t row = std::clamp(static_cast<int32_t>(v >> 30) + below, 0, back.from.height - 1);
            return DibGetPixel(back.from, column, row) >> shift & 255;
        };
        const int64_t above = read(0, 0) * (256 - wx) + read(1, 0) * wx;
        const int64_t below = read(0, 1) * (256 - wx) + read(1, 1) * wx;
        return (above * (256 - wy) + below * wy + 32768) >> 16;
    });
}

/// The picture that has pixel(x, y) moved by offset(line) along its rows or columns, by six taps of a Lanczos window.
template <typename Offset>
LockedDib Sheared(const ReadView &from, int32_t width, int32_t height, bool down, Offset offset) {
    const LockedDib blank(DibCreateLike(from, width, height));
    return PictureLike(blank, [&](int32_t x, int32_t y) {
        const double distance = -offset(down ? x : y), whole = std::floor(distance);
        double weights[6], sum = 0;
        for (int32_t i = 0; i < 6; i++) {
            const double t = std::numbers::pi * (i - 2 - (distance - whole));
            const bool out = std::fabs(t) >= 3 * std::numbers::pi;
            sum += weights[i] = t == 0 ? 1 : out ? 0 : std::sin(t) / t * (std::sin(t / 3) / (t / 3));
        }
        return PixelOf([&](int32_t shift) {
            float mixed = 0;
            for (int32_t i = 0; i < 6; i++) {
                const int32_t at = (down ? y : x) + static_cast<int32_t>(whole) + i - 2;
                const int32_t column = std::clamp(down ? x : at, 0, from.width - 1);
                const int32_t row = std::clamp(down ? at : y, 0, from.height - 1);
                const auto level = static_cast<float>(DibGetPixel(from, column, row) >> shift & 255);
                mixed += static_cast<float>(weights[i] / sum) * level;
            }
            return std::clamp(mixed, 0.0f, 255.0f) + 0.5f;
        });
    });
}

/// The source turned by three shears, before its edges are blended with the fill.
LockedDib ShearedThrice(const WayBack &back) {
    constexpr int32_t padding = 8; // copies of the outermost rows and columns
    const ReadView &from = back.from;
    const double slope = back.sine / (1 + back.cosine);
    const int32_t high = from.height + 2 * padding;
    const auto wide = static_cast<int32_t>(from.width + std::ceil(std::fabs(slope) * high)) + 2 * padding;
    const LockedDib blank(DibCreateLike(from, from.width, high)),
        padded = PictureLike(blank, [&](int32_t x, int32_t y) {
            return DibGetPixel(from, x, std::clamp(y - padding, 0, from.height - 1));
        });
    const LockedDib leaning = Sheared(padded, wide, high, false, [&](int32_t y) {
        return (wide - from.width) / 2.0 + slope * (y - padding + 0.5 - from.height / 2.0);
    });
    const LockedDib upright = Sheared(leaning, wide, back.height, true, [&](int32_t x) {
        return (back.height - high) / 2.0 - back.sine * (x + 0.5 - wide / 2.0);
    });
    return Sheared(upright, back.width, back.height, false,
                   [&](int32_t y) { return (back.width - wide) / 2.0 + slope * (y + 0.5 - back.height / 2.0); });
}

/// Red, green, blue and alpha mixed in parts of 255, to the nearest.
uint32_t Blended(uint32_t over, uint32_t under, uint32_t share) {
    return PixelOf([&](int32_t shift) {
        return ((over >> shift & 255) * share + (under >> shift & 255) * (255 - share) + 127) / 255;
    });
}

enum class Way { Picked, Mixed, ByShears };

/// Expects of a free rotation to the left both of its pictures.
void ExpectRotation(const ReadView &source, int32_t tenths, Way way, bool preserveSize) {
    const Rotated rotated(source, {{&P::FilterRotateAngle, tenths},
                                   {&P::FilterRotateDirection, 0},
                                   {&P::FilterRotateShear, way == Way::ByShears},
                                   {&P::FilterRotateInterpolate, way != Way::Picked},
                                   {&P::FilterRotatePreserve, preserveSize}});
    const double degree = std::numbers::pi / 180, angle = tenths / 10.0 * degree;
    const double c = std::fabs(std::cos(angle)), s = std::fabs(std::sin(angle));
    // Shears turn by 45 degrees at most, what is left after whole quarters.
    const int32_t quarters = way == Way::ByShears ? (tenths + 450) / 900 : 0;
    LockedDib start(DibClone(source));
    for (int32_t i = 0; i < quarters; i++) start = LockedDib(DibTurnAnticlockwise(start));
    const double rest = (tenths - quarters * 900) / 10.0 * degree;
    WayBack back{std::sin(rest), std::cos(rest), source.width, source.height, start};
    if (!preserveSize) {
        back.width = static_cast<int32_t>(std::ceil(source.width * c + source.height * s - 1e-6));
        back.height = static_cast<int32_t>(std::ceil(source.height * c + source.width * s - 1e-6));
    }
    const uint32_t paper = PaperFillValue(0x00FF20, DibClassify(source), source);
    const uint32_t fill = source.bits == 1 ? paper & 1 : paper;
    const LockedDib sheared = way == Way::ByShears ? ShearedThrice(back) : LockedDib();
    const WriteView &size = rotated.picture.View();
    ASSERT_TRUE(size.width == back.width && size.height == back.height);
    ExpectPixels(rotated.picture, [&](int32_t x, int32_t y) {
        if (way == Way::Picked)
            return back.Holds(x, y) ? DibGetPixel(start, int32_t(back.X(x, y) >> 30), int32_t(back.Y(x, y) >> 30))
                                    : fill;

        const uint32_t color = way == Way::Mixed ? MixedPixel(back, x, y) : DibGetPixel(sheared, x, y);
        return Blended(color, fill, back.Coverage(x, y));
    });
    ExpectPixels(rotated.coverage, [&](int32_t x, int32_t y) {
        return way == Way::Picked ? back.Holds(x, y) ? 255u : 0u : back.Coverage(x, y);
    });
}

} // namespace

TEST(Rotate, AgreesWithItsDefinitions) {
    for (uint32_t bits : {8u, 24u, 32u}) {
        for (const auto &[width, height] : {std::pair{1, 1}, {40, 31}, {9, 60}, {150, 7}}) {
            const LockedDib source = RandomDepth(width, height, bits, 31);
            for (int32_t tenths : {1, 300, 450, 1000, 2255, 3523}) {
                SCOPED_TRACE(::testing::Message() << bits << " bits, " << width << 'x' << height << " by " << tenths);
                for (Way way : {Way::Picked, Way::Mixed, Way::ByShears}) ExpectRotation(source, tenths, way, false);
                ExpectRotation(source, tenths, Way::ByShears, true);
                if (HasFailure()) return;
            }
        }
    }
    for (ImageMode mode : {kModePalette, kModeMono})
        ExpectRotation(RandomPicture(30, 21, mode, 4), 777, Way::Picked, true);
}

TEST(Rotate, TurnsByQuartersBothWays) {
    const LockedDib picture = MakePicture(3, 1, 8, {1, 2, 3});
    for (const auto &[tenths, direction, first] :
         {std::tuple{900, 0, 3u}, {900, 1, 1u}, {2700, 1, 3u}, {1800, 0, 3u}, {0, 0, 1u}}) {
        const Rotated turned(picture, {{&P::FilterRotateAngle, tenths}, {&P::FilterRotateDirection, direction}});
        EXPECT_EQ(PixelsOf(turned.picture), (Pixels{first, 2, 4 - first})) << tenths;
        EXPECT_FALSE(turned.coverage);
    }
}

TEST(Rotate, MixesTrueColorAndGreyOnly) {
    const LockedDib indexes = RandomPicture(20, 20, kModePalette, 3);
    const Rotated mixed(indexes, {{&P::FilterRotateAngle, 100}, {&P::FilterRotateInterpolate, 1}}),
        picked(indexes, {{&P::FilterRotateAngle, 100}, {&P::FilterRotateInterpolate, 0}});
    EXPECT_TRUE(SamePicture(mixed.picture, picked.picture));
}

TEST(Rotate, AWholeTurnToTheRightGoesTheLongWayAndChangesNothing) {
    for (ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono}) {
        const LockedDib picture = RandomPicture(14, 9, mode, 5);
        for (bool byShears : {false, true}) {
            const Rotated turned(picture, {{&P::FilterRotateDirection, 1}, {&P::FilterRotateShear, byShears}});
            EXPECT_TRUE(SamePicture(turned.picture, picture));
            EXPECT_EQ(PixelsOf(turned.coverage), Pixels(14 * 9, 255));
        }
    }
}

} // namespace lmf::testing
