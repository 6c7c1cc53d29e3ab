// Filters that paint the picture anew or lay light over it: each against a slow reading of its rule.
#include <cmath>

#include "filters/neighbourhood/neon.h"
#include "image/blur/gaussian.h"
#include "image/color/blend.h"
#include "image/color/tone_table.h"
#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/resample.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

LockedDib Faded(const ReadView &source, const FilterContext &context) {
    LockedDib picture(DibClone(source));
    const int32_t edge = context.FilterFadeEdge;
    const bool rows = edge == 0 || edge == 2, fromPaper = edge == 0 || edge == 3;
    const int32_t length = rows ? source.height : source.width, n = context.FilterFadeArea * length / 100;
    ForEachPixel(source, [&](int32_t x, int32_t y) {
        const int32_t k = (rows ? y : x) - (fromPaper ? 0 : length - n);
        if (k < 0 || k >= n) return;
        const auto f = static_cast<uint32_t>(255 * k / n);
        const Color faded = MixBytes(DibGetPixel(source, x, y), context.paperColor, fromPaper ? 255 - f : f);
        DibSetPixel(picture.View(), x, y, faded);
    });
    return picture;
}

LockedDib Brushed(const ReadView &source, const FilterContext &context) {
    const int32_t width = source.width, height = source.height;
    const auto d = static_cast<int32_t>(2 * std::ceil(context.FilterOilpaintRadius / 100.0) + 1.0);
    return PictureLike(source, [&](int32_t x, int32_t fromTop) {
        const int32_t y = height - 1 - fromTop;
        if (x == width - 1 || y == height - 1) return context.paperColor;
        Color chosen = 0;
        int32_t counts[256] = {}, best = 0;
        const auto scan = [&](int32_t row, int32_t first, int32_t last) {
            for (int32_t column = first; column <= last; column++) {
                const bool inside = column >= 0 && column < width && row >= 0 && row < height;
                const Color pixel = inside ? DibGetPixel(source, column, height - 1 - row) : context.paperColor;
                const int32_t count =
                    ++counts[(3735 * BlueOf(pixel) + 19235 * GreenOf(pixel) + 9798 * RedOf(pixel)) >> 15];
                if (count > best) chosen = pixel;
                best = std::max(best, count);
            }
        };
        for (int32_t i = 0; i < d; i++) {
            scan(y - (d - i), x + 1 - i, x + 1 + i);
            scan(y + (d - i), x + 1 - i, x + 1 + i);
        }
        scan(y, x - d, x + d);
        return chosen;
    });
}

/// A pixel with light on it, which is written only where there is some.
struct LitPixel {
    Color color;

    void Add(bool isLit, float amount, const int32_t (&fractions)[3]) {
        uint32_t lit = 0;
        for (uint32_t c = 0; c < 3; c++) {
            const auto channel = static_cast<float>(color >> 8 * c & 255),
                       k = static_cast<float>(fractions[c]) / 255.0f;
            lit |= static_cast<uint32_t>((255.0f - channel) * amount * k + channel) << 8 * c;
        }
        if (isLit) color = lit;
    }
};

struct Reflection {
    float place, size;
    int32_t fractions[3];
    int32_t type;
};
constexpr Reflection kReflections[] = {
    {0.6699f, 0.027f, {0, 14, 113}, 1}, {0.2692f, 0.01f, {90, 181, 142}, 1}, {-0.0112f, 0.005f, {56, 140, 106}, 1},
    {0.649f, 0.031f, {9, 29, 19}, 2},   {0.4696f, 0.015f, {24, 14, 0}, 2},   {0.4087f, 0.037f, {24, 14, 0}, 2},
    {-0.2003f, 0.022f, {42, 19, 0}, 2}, {-0.4103f, 0.025f, {0, 9, 17}, 2},   {-0.4503f, 0.058f, {0, 4, 10}, 2},
    {-0.5112f, 0.017f, {5, 5, 14}, 2},  {-1.496f, 0.2f, {9, 4, 0}, 2},       {-1.496f, 0.5f, {9, 4, 0}, 2},
    {0.4487f, 0.075f, {34, 19, 0}, 3},  {1.0f, 0.1f, {14, 26, 0}, 3},        {-1.301f, 0.039f, {10, 25, 13}, 3},
    {1.309f, 0.19f, {9, 0, 17}, 4},     {1.309f, 0.195f, {9, 16, 5}, 4},     {1.309f, 0.2f, {17, 4, 0}, 4},
    {-1.301f, 0.038f, {17, 4, 0}, 4},
};

Color Flared(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t width = from.width, height = from.height;
    const int32_t fx = (context.FilterLensFlareX - 50) * width / 100 + width / 2;
    const int32_t fy = (context.FilterLensFlareY - 50) * height / 100 + height / 2;
    const auto S = static_cast<float>(std::max(width, height) * context.FilterLensFlareIntensity / 100);
    LitPixel pixel{DibGetPixel(from, x, y)};

    const float d = std::hypot(static_cast<float>(x - fx), static_cast<float>(y - fy));
    const auto cone = [&](float R) { return (R - d) / R; };
    const float core = cone(0.0375f * S), halo = cone(0.078125f * S), glow = cone(0.1796875f * S);
    const float veil = cone(0.3359375f * S), R = 0.084375f * S, ring = std::abs((d - R) / (0.07f * R));
    pixel.Add(core > 0, core * core, {239, 239, 239});
    pixel.Add(halo > 0, halo * halo, {245, 245, 245});
    pixel.Add(glow > 0, glow * glow, {255, 38, 43});
    pixel.Add(veil > 0, veil, {69, 59, 64});
    pixel.Add(ring < 1, 1 - ring, {80, 15, 4});

    for (const Reflection &spot : kReflections) {
        const auto along = [&](int32_t middle, int32_t f) {
            return static_cast<int32_t>(static_cast<float>(middle - f) * spot.place + static_cast<float>(middle));
        };
        const float Z = spot.size * S, away = std::hypot(static_cast<float>(x - along(width / 2, fx)),
                                                         static_cast<float>(y - along(height / 2, fy)));
        const float disc = (Z - away) / (0.15f * Z), lens = (Z - away) / (0.12f * Z), flat = (Z - away) / Z;
        const float line = std::abs((away - Z) / (0.04f * Z));
        if (spot.type == 1) pixel.Add(flat > 0, flat * flat, spot.fractions);
        if (spot.type == 2) pixel.Add(disc > 0, std::min(disc, 1.0f), spot.fractions);
        if (spot.type == 3) pixel.Add(lens > 0, lens > 1 ? 1 - 0.12f * lens : lens, spot.fractions);
        if (spot.type == 4) pixel.Add(line < 1, 1 - line, spot.fractions);
    }
    return pixel.color;
}

/// All steps with whole 24-bit pictures.
LockedDib Impacted(const ReadView &source, const FilterContext &context) {
    const LockedDib grey(DibToGrey(source));
    const LockedDib clamped =
        PictureLike(grey, [&](int32_t x, int32_t y) { return std::clamp(DibGetPixel(grey, x, y), 4u, 251u); });
    const LockedDib top(DibToRgb(clamped));
    const int32_t radius = context.FilterImpactBlur;
    const LockedDib blurred(radius < 2 ? DibClone(source) : GaussianBlurDirect(source, radius, 50));
    const ToneTable tones = BuildContrastTable(context.FilterImpactContrast, context.FilterImpactBrightness);
    const LockedDib toned(ApplyToneTableByMode(blurred, tones, kModeTrueColor));
    LockedDib result(DibBlend(toned, top, static_cast<uint32_t>(context.FilterImpactMode)));
    if (!context.FilterImpactOutlineEnable) return result;
    const LockedDib outline(Neon(top));
    return LockedDib(DibTintByMask(result, outline, static_cast<Color>(context.FilterImpactOutlineColor)));
}

/// Every ellipse painted on a canvas of four times the size.
LockedDib Domed(const ReadView &source, const FilterContext &context) {
    GdiCanvas canvas;
    const int32_t W4 = 4 * source.width, H4 = 4 * source.height, inset = 4 * context.FilterPlasticBorder;
    const int32_t n = H4 * context.FilterPlasticStart / 100, e = std::max(n / context.FilterPlasticEdge, 3);
    const int32_t s = W4 * context.FilterPlasticSize / 100, half = s / 2, brightness = context.FilterPlasticBrightness;
    EXPECT_TRUE(GdiCanvasOpen(W4, H4, &canvas));
    canvas.clip = {inset, inset, W4 - inset, H4 - inset};
    for (int32_t i = 0; i < n; i++) {
        const double angle = static_cast<float>(i) / static_cast<float>(e) * 90.0f;
        const int32_t tone = i < e ? static_cast<int32_t>(std::sin(angle * 3.14159265358979323846 / 180) * brightness)
                                   : brightness - (i - e) * brightness / (n - e) - 1;
        const int32_t top = H4 * context.FilterPlasticStart / 100 - s - i;
        GdiCanvasPaint(canvas, EllipseShape({W4 / 2 - half, top, W4 / 2 + half, top + s}),
                       static_cast<Color>(tone) * 0x10101);
    }
    GdiCanvasClose(&canvas, true);
    const LockedDib large(canvas.picture.Release()), mask(DibScalePercent(large, 25, 25, 0)), copy(DibToRgb(source));
    return ByChannel([&](auto read, const FilterContext &, int32_t x, int32_t y) {
        const auto m = static_cast<int32_t>(DibGetPixel(mask, x, y) & 255);
        return (read(x, y) * (255 - m) / 255 + m) & 255;
    })(copy, context);
}

const std::vector<Kind> kColors = {Kind::Color, Kind::Alpha};

} // namespace

TEST(Painting, FastPathsAreTheSlowRules) {
    for (int32_t edge = 0; edge < 4; edge++)
        ExpectDefinition("Fade", {.kinds = kColors, .fixed = {{&P::FilterFadeEdge, edge}}}, Faded);
    ExpectDefinition("Oil Painting", {kColors}, Brushed);
    ExpectDefinition("Lens Flare", {kColors}, ByPixel(Flared));
    ExpectDefinition("Impact", {.kinds = kColors, .sizes = {{1, 1}, {9, 8}, {64, 20}, {6, 100}, {620, 7}}}, Impacted);
    ExpectDefinition("Plastic", {.kinds = kColors, .rounds = 2}, Domed);
}

TEST(Painting, WorkedExamples) {
    // At the centre of the core 255 - c shrinks by 239 / 255: 0 becomes 239, then 254, and then 255 in red alone.
    const LockedDib black(DibCreateSolid(400, 400, 0));
    const LockedDib flare = RunKernel("Lens Flare", black, {{&P::FilterLensFlareX, 50}, {&P::FilterLensFlareY, 0}});
    EXPECT_EQ(DibGetPixel(flare, 200, 0), 0xFEFEFFu);
    EXPECT_NE(DibGetPixel(flare, 200, 390), 0x000000u) << "reflections lie on the other side of the middle";

    // A single pixel that differs is outvoted everywhere; the top row and the right column are paper.
    FilterContext context =
        ContextWith({{&P::FilterOilpaintRadius, 100}, {&P::FilterFadeEdge, 3}, {&P::FilterFadeArea, 100}});
    context.paperColor = 0x0000FF;
    const LockedDib dotted(DibCreateSolid(20, 20, 0x808080));
    DibSetPixel(dotted.View(), 10, 10, 0xFFFFFF);
    const LockedDib oil = RunKernel("Oil Painting", dotted, context);
    EXPECT_EQ(DibGetPixel(oil, 10, 10), 0x808080u);
    EXPECT_TRUE(DibGetPixel(oil, 0, 0) == 0x0000FF && DibGetPixel(oil, 19, 19) == 0x0000FF);

    const LockedDib line(DibCreateSolid(5, 1, 0));
    EXPECT_EQ(PixelsOf(RunKernel("Fade", line, context)), (Pixels{255, 204, 153, 102, 51}));
    context.FilterFadeEdge = 1;
    EXPECT_EQ(PixelsOf(RunKernel("Fade", line, context)), (Pixels{0, 51, 102, 153, 204}));

    const LockedDib dome = RunKernel("Plastic", LockedDib(DibCreateSolid(40, 40, 0)), {{&P::FilterPlasticBorder, 6}});
    EXPECT_TRUE(DibGetPixel(dome, 20, 2) == 0 && DibGetPixel(dome, 2, 10) == 0 && DibGetPixel(dome, 20, 12) != 0);
}

} // namespace lmf::testing
