// Frame, Matt, Raise and Round: worked examples, and slow readings of what they draw.
#include "support/reference.h"

namespace lmf::testing {

namespace {

/// (weight * channel + light) / 255 for each channel, rounded.
Color Shaded(Color color, double weight, double light) {
    Color shaded = 0;
    for (int32_t shift = 0; shift < 24; shift += 8)
        shaded |= static_cast<Color>((weight * (color >> shift & 255) + light) * (1 / 255.0) + 0.5) << shift;
    return shaded;
}

LockedDib FrameDefinition(const ReadView &source, const FilterContext &context) {
    const int32_t b = context.FilterFrameBevel, m = context.FilterFrameMatte, t = m + 2 * b;
    const int32_t width = source.width + 2 * t, height = source.height + 2 * t;
    LockedDib result(DibCreateLike(source, width, height));
    ForEachPixel(source,
                 [&](int32_t x, int32_t y) { DibSetPixel(result.View(), x + t, y + t, DibGetPixel(source, x, y)); });
    const Color paper = context.paperColor;
    const Color l1 = Shaded(paper, 175, 20400), l2 = Shaded(paper, 130, 31875);
    const Color d1 = Shaded(paper, 135, 0), d2 = Shaded(paper, 110, 0);
    for (int32_t side = 0; side < 4; side++) {
        const bool lit = side % 2 == 0;
        for (int32_t k = 0; k < t; k++) {
            // The edges of the matte have the second tones.
            const bool isNear = k == b - 1 || k == b + m, isLight = lit == (k < b);
            const Color bevel = isLight ? (isNear ? l1 : l2) : (isNear ? d2 : d1);
            const Color tone = k < b || k >= b + m ? bevel : paper;
            const int32_t length = side < 2 ? width : height, across = lit ? k : width + height - length - 1 - k;
            for (int32_t i = k; i <= length - k; i++)
                DibSetPixel(result.View(), side < 2 ? i : across, side < 2 ? across : i, tone);
        }
    }
    return result;
}

LockedDib RoundDefinition(const ReadView &source, const FilterContext &context) {
    LockedDib result(DibClone(source));
    const int32_t width = source.width, height = source.height;
    const int32_t n = std::min(context.FilterRoundBevelsize, std::min(width, height) / 2) + 1;
    for (const bool lightens : {true, false}) {
        const bool upperLeft = lightens == (context.FilterRoundRaised != 0);
        for (int32_t k = 0; k < n; k++) {
            const auto t = static_cast<uint32_t>(128.0 + k * (lightens ? 126.0 : 127.0) / n);
            const auto tone = [&](int32_t x, int32_t y) {
                uint32_t toned = 0;
                for (int32_t shift = 0; shift < 24; shift += 8)
                    toned |= ((DibGetPixel(result, x, y) >> shift & 255) * t / 255 + (lightens ? 255 - t : 0)) << shift;
                DibSetPixel(result.View(), x, y, toned);
            };
            for (int32_t y = height - k - 1; y > k; y--) tone(upperLeft ? k : width - k - 1, y);
            for (int32_t x = k; x < width - k - 1; x++) tone(x, upperLeft ? k : height - k - 1);
        }
    }
    return result;
}

Color RaiseRule(const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t width = from.width, height = from.height;
    const int32_t s = std::min(width, height) * context.FilterRaiseSize / 100;
    const int32_t a = context.FilterRaiseRaise ? 255 : 0, b = 255 - a;
    const Color pixel = DibGetPixel(from, x, y);
    const auto shaded = [&](int32_t weight, int32_t light) {
        return Shaded(pixel, weight, (255 - weight) * light) & (from.bits == 8 ? 255 : 0xFFFFFF);
    };
    if (y < s) return x < y ? shaded(190, a) : x < width - y ? shaded(135, a) : shaded(190, b);
    if (y < height - s) return x < s ? shaded(190, a) : x < width - s ? pixel : shaded(190, b);
    return x < height - y ? shaded(190, a) : x < width - height + y ? shaded(135, b) : shaded(190, b);
}

} // namespace

TEST(Frames, DrawRingsAndFaces) {
    ExpectDefinition("Frame", {.kinds = {Kind::Color, Kind::Alpha}}, FrameDefinition);
    ExpectDefinition("Round", {.kinds = {Kind::Color, Kind::Alpha}}, RoundDefinition);
    ExpectDefinition("Raise", {.kinds = {Kind::Color, Kind::Grey}}, ByPixel(RaiseRule));
    // What Raise shades loses its alpha, what it does not keeps it.
    const LockedDib clear = MakePicture(5, 5, 32, Pixels(25, 0x40302010));
    const LockedDib raised = RunKernel("Raise", clear, {{&P::FilterRaiseSize, 20}});
    EXPECT_EQ(DibGetPixel(raised, 2, 2), 0x40302010u);
    EXPECT_EQ(DibGetPixel(raised, 2, 0), 0x918980u);
}

TEST(Frame, WorkedExample) {
    const LockedDib source = MakePicture(1, 1, 24, {0x102030});
    FilterContext context = ContextWith({{&P::FilterFrameBevel, 2}, {&P::FilterFrameMatte, 2}});
    context.paperColor = 0x0080FF;
    const LockedDib framed = RunKernel("Frame", source, context);
    // The middle row: outer bevel, matte, inner bevel, picture, and back.
    const Pixels row = {0x7DBEFF, 0x50A8FF, 0x0080FF, 0x0080FF, 0x00376E, 0x004487, 0x102030,
                        0x7DBEFF, 0x50A8FF, 0x0080FF, 0x0080FF, 0x00376E, 0x004487};
    const Pixels pixels = PixelsOf(framed);
    ASSERT_EQ(pixels.size(), 169u);
    EXPECT_EQ(Pixels(&pixels[78], &pixels[91]), row);
    // The upper left corner belongs to the left side, the other three to the bottom or the right.
    EXPECT_TRUE(pixels[0] == 0x7DBEFF && pixels[12] == 0x004487 && pixels[156] == 0x7DBEFF && pixels[168] == 0x004487);
}

TEST(Matt, PlacesThePictureOnTheSheet) {
    struct Case {
        int32_t absolute, size, across, down;
        int32_t width, height, x, y;
    };
    // The last one has a size of its own and is narrower than the picture.
    static constexpr Case kCases[] = {{0, 20, 100, 100, 11, 7, 1, 1}, {0, 9, 0, 0, 9, 5, 0, 0},
                                      {0, 50, 0, 200, 17, 13, 0, 8},  {0, 100, 133, 66, 27, 23, 11, 6},
                                      {0, 35, 101, 99, 15, 11, 3, 3}, {1, 35, 100, 50, 4, 10, -2, 1}};
    const LockedDib source = RandomPicture(9, 5, kModeTrueColor, 4);
    for (const Case &c : kCases) {
        FilterContext context = ContextWith({{&P::FilterMattAbsolute, c.absolute},
                                             {&P::FilterMattSize, c.size},
                                             {&P::FilterMattXOffset, c.across},
                                             {&P::FilterMattYOffset, c.down},
                                             {&P::FilterMattWidth, 4},
                                             {&P::FilterMattDepth, 10}});
        context.paperColor = 0x123456;
        const LockedDib matted = RunKernel("Matt", source, context);
        ASSERT_TRUE(ReadView(matted).width == c.width && ReadView(matted).height == c.height);
        ExpectPixels(matted, [&](int32_t x, int32_t y) {
            const uint32_t pixel = DibGetPixel(source, x - c.x, y - c.y);
            return pixel == kOutside ? 0x123456u : pixel;
        });
    }
    // A page of its own for every picture: the sheet starts at the picture's size.
    FilterContext context = MakeContext();
    context.width = 31;
    context.height = 17;
    LoadPage(*EntryOf("Matt").filter, context);
    EXPECT_TRUE(context.FilterMattWidth == 31 && context.FilterMattDepth == 17);
}

TEST(Matt, FillsInTheTermsOfTheMode) {
    Palette768 palette = {};
    palette.rgb[3] = palette.rgb[7] = 250;
    const std::tuple<LockedDib, Color, uint32_t> cases[] = {
        {MakePicture(3, 3, 1), 0xFEFEFE, 0},
        {MakePicture(3, 3, 1), 0xFFFFFF, 1},
        {MakePicture(3, 3, 8), 0x646464, 100},
        {MakePicture(3, 3, 8), 0x646465, 98},
        {MakePalettePicture(3, 3, 8, palette), 0x00F000, 2},
        {MakePalettePicture(3, 3, 4, palette), 0x0000F0, 1},
        {MakePicture(3, 3, 32), 0xABCDEF, 0xABCDEF},
    };
    for (const auto &[source, paper, fill] : cases) {
        FilterContext context = ContextWith({{&P::FilterMattSize, 50}});
        context.paperColor = paper;
        ExpectPixels(RunKernel("Matt", source, context), [&, &source = source, fill = fill](int32_t x, int32_t y) {
            return DibGetPixel(source, x - 1, y - 1) == kOutside ? fill : 0;
        });
    }
}

} // namespace lmf::testing
