// Vignette against a mask that is painted ellipse after ellipse.
#include <cmath>

#include "support/reference.h"

namespace lmf::testing {

namespace {

/// Does the ellipse in the box that stays `inset` pixels off the picture's edges hold the centre of a pixel?
bool IsInside(const ReadView &picture, int32_t inset, int32_t x, int32_t y) {
    const int64_t w = std::abs(picture.width - 2 * inset), h = std::abs(picture.height - 2 * inset);
    const int64_t dx = 2 * x + 1 - picture.width, dy = 2 * y + 1 - picture.height;
    return w > 0 && h > 0 && dx * dx * h * h + dy * dy * w * w <= w * w * h * h;
}

std::vector<uint8_t> MaskOf(const ReadView &picture, int32_t fade, int32_t offset) {
    std::vector<uint8_t> mask(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height), 255);
    const int32_t margin = std::min(picture.width, picture.height) * offset / 100;
    const int32_t n = (std::max(picture.width, picture.height) / 2 - margin) * fade / 100;
    const int32_t steps = std::min(n, 256);
    double inset = 0;
    for (int32_t i = 0; i < steps; i++) {
        const auto tone = static_cast<uint8_t>(255.0 - std::sin(i * (90.0 / steps) * 0.017453277777777776) * 255.0);
        ForEachPixel(picture, [&](int32_t x, int32_t y) {
            if (IsInside(picture, margin + static_cast<int32_t>(inset), x, y))
                mask[static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x)] = tone;
        });
        inset += n <= 256 ? 1 : n * 0.00390625;
    }
    return mask;
}

LockedDib VignetteDefinition(const ReadView &source, const FilterContext &context) {
    const std::vector<uint8_t> mask = MaskOf(source, context.FilterVignetteLevel, context.FilterVignetteOffsetLevel);
    return PictureLike(source, [&](int32_t x, int32_t y) {
        const uint32_t g = mask[static_cast<size_t>(y) * static_cast<size_t>(source.width) + static_cast<size_t>(x)];
        const uint32_t pixel = DibGetPixel(source, x, y), paper = context.paperColor;
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
    // The paper reaches half of the picture's radius, and the middle is the picture.
    for (const auto &[x, y] : {std::pair{0, 0}, {79, 40}, {40, 19}, {19, 40}, {25, 25}})
        EXPECT_EQ(DibGetPixel(faded, x, y), 0x204060u) << x << ',' << y;
    for (const auto &[x, y] : {std::pair{40, 40}, {40, 32}, {48, 39}})
        EXPECT_GE(RedOf(DibGetPixel(faded, x, y)), 250) << x << ',' << y;
    // The first ellipse has the paper's own tone, so the edge has no step.
    EXPECT_EQ(DibGetPixel(faded, 40, 20), 0x204060u);
    EXPECT_NE(DibGetPixel(faded, 40, 21), 0x204060u);
}

TEST(Vignette, GreyTakesTheLowByteOfThePackedPaper) {
    FilterContext context = ContextWith({{&P::FilterVignetteLevel, 50}});
    context.paperColor = 0x010000;
    const LockedDib faded = RunKernel("Vignette", MakePicture(20, 20, 8, Pixels(400, 9)), context);
    EXPECT_EQ(DibGetPixel(faded, 0, 0), 0u) << "255 * 0x10000 / 255 has no low byte";
    EXPECT_EQ(DibGetPixel(faded, 10, 10), 20u) << "243 * 9 / 255 and the low byte of 12 * 0x10000 / 255";
    context.paperColor = 0xFFFFFF;
    const LockedDib wrapped = RunKernel("Vignette", MakePicture(20, 20, 8, Pixels(400, 9)), context);
    EXPECT_EQ(DibGetPixel(wrapped, 0, 0), 255u);
    // A mode that it does not know leaves a blank picture.
    context.mode = kModePalette;
    const LockedDib blank = RunKernel("Vignette", MakePicture(20, 20, 8, Pixels(400, 9)), context, true);
    ExpectPixels(blank, [](int32_t, int32_t) { return 0; });
}

} // namespace lmf::testing
