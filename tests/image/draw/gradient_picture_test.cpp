#include <cmath>

#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/draw/gradient_picture.h"
#include "support/pictures.h"

namespace lmf::testing {

constexpr Color kFirst = 0x10C020, kLast = 0xF00AB0;

/// The rings painted one over the other, from the first to the last.
template <typename Shape>
static LockedDib Rings(int32_t width, int32_t height, int32_t offsetX, int32_t offsetY) {
    GdiCanvas canvas;
    EXPECT_EQ(GdiCanvasOpen(width, height, &canvas), 1);
    DibFillRect(canvas.lock->view, 0, 0, width, height, kFirst);
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    const auto halves = static_cast<float>((width / 2) * (width / 2) + (height / 2) * (height / 2));
    const auto n = static_cast<int32_t>(std::sqrt(halves) + 0.5f);
    const float count = static_cast<float>(n), a = w * std::sqrt(2.0f), b = h * std::sqrt(2.0f);
    float left = w / 2 - a / 2, right = w / 2 + a / 2, top = h / 2 - b / 2, bottom = h / 2 + b / 2;
    const float sx = (a / 2) / count, sy = (b / 2) / count;
    const float ox = (a / count) * static_cast<float>(offsetX) / 100;
    const float oy = (b / count) * static_cast<float>(offsetY) / 100;
    for (int32_t i = 0; i < n; i++) {
        const float t = static_cast<float>(i) / count;
        const auto mix = [&](uint8_t from, uint8_t to) { return static_cast<uint32_t>(to * t + from * (1 - t)); };
        GdiCanvasPaint(canvas,
                       Shape({static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right),
                              static_cast<int32_t>(bottom)}),
                       PackColor(mix(RedOf(kFirst), RedOf(kLast)), mix(GreenOf(kFirst), GreenOf(kLast)),
                                 mix(BlueOf(kFirst), BlueOf(kLast))));
        left += sx + ox;
        right += ox - sx;
        top += sy + oy;
        bottom += oy - sy;
    }
    GdiCanvasClose(&canvas, true);
    return LockedDib(canvas.picture.Release());
}

TEST(GradientPicture, RingsAreThoseOfPaintingEachOverTheOthers) {
    for (const auto &[width, height, x, y] :
         std::vector<std::array<int32_t, 4>>{{1, 1, 0, 0}, {1, 9, 5, 5}, {64, 20, -49, 49}, {131, 90, 30, -12}}) {
        const LockedDib ellipses(GradientPicture(kFirst, kLast, width, height, x, y, 77, kGradientSpherical));
        EXPECT_TRUE(SamePicture(ellipses, Rings<EllipseShape>(width, height, x, y))) << width;
        const LockedDib boxes(GradientPicture(kFirst, kLast, width, height, x, y, 77, kGradientCubic));
        EXPECT_TRUE(SamePicture(boxes, Rings<RectangleShape>(width, height, x, y))) << width;
    }
}

TEST(GradientPicture, BandsRunFromTheSecondColourToTheFirst) {
    // Without a turn the box is larger by 2 on each side: 256 bands on 260 rows, of which 2 are seen of none.
    const LockedDib upright(GradientPicture(0, 0xFFFFFF, 3, 256, 0, 0, 0, kGradientLinear));
    ExpectPixels(upright, [](int32_t, int32_t y) {
        const auto band = static_cast<uint32_t>(((y + 3) * 256 - 1) / 260);
        const uint32_t grey = (256 - band) * 255 / 256;
        return PackColor(grey, grey, grey);
    });
    // A right angle turns it clockwise: what was on top is on the right.
    const LockedDib turned(GradientPicture(0, 0xFFFFFF, 100, 40, 0, 0, 90, kGradientLinear));
    const ReadView view = turned;
    EXPECT_GT(RedOf(DibGetPixel(view, 99, 20)), 240);
    EXPECT_LT(RedOf(DibGetPixel(view, 0, 20)), 15);
    EXPECT_EQ(GradientPicture(0, 0, 5, 0, 0, 0, 0, kGradientLinear), nullptr);
}

TEST(GradientPicture, RaysGoThereAndBackAroundTheirPoint) {
    // Straight up is 90 degrees, to the right 180, down 270 and to the left 0.
    const auto at = [](int32_t angle, int32_t x, int32_t y) {
        const LockedDib picture(GradientPicture(0, 0xFFFFFF, 41, 41, 0, 0, angle, kGradientConic));
        return RedOf(DibGetPixel(picture, x, y));
    };
    EXPECT_EQ(at(0, 20, 0), 127);
    EXPECT_EQ(at(0, 40, 20), 255);
    EXPECT_EQ(at(0, 20, 40), 127);
    EXPECT_EQ(at(0, 0, 20), 0);
    EXPECT_EQ(at(90, 20, 0), 0);
    EXPECT_EQ(at(90, 20, 40), 255);
    EXPECT_EQ(at(45, 0, 20), 63);
    EXPECT_EQ(at(0, 20, 20), 127) << "the point itself looks up";
    const LockedDib moved(GradientPicture(0, 0xFFFFFF, 100, 100, -49, 49, 0, kGradientConic));
    EXPECT_EQ(RedOf(DibGetPixel(moved, 50, 1)), 255) << "the point lies up and to the left";
}

} // namespace lmf::testing
