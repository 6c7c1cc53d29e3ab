// Vignette against a mask that is painted ellipse after ellipse.
#include <cmath>

#include "image/core/dib_ops.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

/// Does the ellipse in the box that stays `inset` pixels off the picture's edges hold the centre of a pixel?
bool IsInside(const ReadView &picture, int32_t inset, int32_t x, int32_t y) {
    const int64_t w = std::abs(picture.width - 2 * inset), h = std::abs(picture.height - 2 * inset);
    const int64_t dx = 2 * x + 1 - picture.width, dy = 2 * y + 1 - picture.height;
    return w > 0 && h > 0 && dx * dx * h * h + dy * dy * w * w <= w * w * h * h;
}

/// A grey picture of the size.
LockedDib MaskOf(const ReadView &picture, int32_t fade, int32_t offset) {
    LockedDib mask = MakePicture(picture.width, picture.height, 8);
    DibFillRect(mask.View(), 0, 0, picture.width, picture.height, 255);
    const int32_t margin = std::min(picture.width, picture.height) * offset / 100;
    const int32_t n = (std::max(picture.width, picture.height) / 2 - margin) * fade / 100;
    const int32_t steps = std::min(n, 256);
    double inset = 0;
    for (int32_t i = 0; i < steps; i++) {
        const auto tone = static_cast<uint8_t>(255.0 - std::sin(i * (90.0 / steps) * 0.017453277777777776) * 255.0);
        ForEachPixel(picture, [&](int32_t x, int32_t y) {
            if (IsInside(picture, margin + static_cast<int32_t>(inset), x, y)) DibSetPixel(mask.View(), x, y, tone);
        });
        inset += n <= 256 ? 1 : n * 0.00390625;
    }
    return mask;
}

LockedDib VignetteDefinition(const ReadView &source, const FilterContext &context) {
    const LockedDib mask = MaskOf(source, context.FilterVignetteLevel, context.FilterVignetteOffsetLevel);
    return PictureLike(source, [&](int32_t x, int32_t y) {
        const uint32_t g = DibGetPixel(mask, x, y), pixel = DibGetPixel(source, x, y), paper = context.paperColor;
        return source.bits == 8 ? (255 - g) * pixel / 255 + g * paper / 255 : MixBytes(pixel & 0xFFFFFF, paper, g);
    });
}

} // namespace

TEST(Vignette, BlendsThroughNestedEllipses) {
    ExpectDefinition("Vignette", {.kinds = {Kind::Color, Kind::Alpha, Kind::Grey}}, VignetteDefinition);
    // Narrow sides that run out, and more pixels than steps.
    ExpectDefinition("Vignette",
                     {.kinds = {Kind::Color, Kind::Grey},
                      .fixed = {{&P::FilterVignetteLevel, 50}},
                      .sizes = {{40, 9}, {5, 60}, {1101, 4}, {3, 1030}}},
                     VignetteDefinition);
}

TEST(Vignette, FadesToThePaperOutside) {
    FilterContext context = ContextWith({{&P::FilterVignetteLevel, 50}, {&P::FilterVignetteOffsetLevel, 25}});
    context.paperColor = 0x204060;
    const LockedDib faded = RunKernel("Vignette", MakePicture(80, 80, 24, Pixels(6400, 0xFFFFFF)), context);
    // The first ellipse has the paper's own tone, so the edge has no step.
    for (const auto &[x, y] : {std::pair{0, 0}, {79, 40}, {40, 20}, {19, 40}, {25, 25}})
        EXPECT_EQ(DibGetPixel(faded, x, y), 0x204060u) << x << ',' << y;
    EXPECT_NE(DibGetPixel(faded, 40, 21), 0x204060u);
    EXPECT_GE(RedOf(DibGetPixel(faded, 40, 32)), 250);
}

TEST(Vignette, GreyTakesTheLowByteOfThePackedPaper) {
    FilterContext context = ContextWith({{&P::FilterVignetteLevel, 50}});
    context.paperColor = 0x010000;
    const LockedDib source = MakePicture(20, 20, 8, Pixels(400, 9)), faded = RunKernel("Vignette", source, context);
    EXPECT_EQ(DibGetPixel(faded, 0, 0), 0u) << "255 * 0x10000 / 255 has no low byte";
    EXPECT_EQ(DibGetPixel(faded, 10, 10), 20u) << "243 * 9 / 255 and the low byte of 12 * 0x10000 / 255";
    // A mode that it does not know leaves a blank picture.
    context.mode = kModePalette;
    ExpectPixels(RunKernel("Vignette", source, context, true), [](int32_t, int32_t) { return 0; });
}

} // namespace lmf::testing
