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
            Color tone = paper;
            if (k < b) tone = lit ? (k == b - 1 ? l1 : l2) : (k == b - 1 ? d2 : d1);
            if (k >= b + m) tone = lit ? (k == b + m ? d2 : d1) : (k == b + m ? l1 : l2);
            if (side < 2) {
                for (int32_t x = k; x <= width - k; x++) DibSetPixel(result.View(), x, lit ? k : height - 1 - k, tone);
            } else {
                for (int32_t y = k; y <= height - k; y++) DibSetPixel(result.View(), lit ? k : width - 1 - k, y, tone);
            }
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
                const uint32_t pixel = DibGetPixel(result, x, y);
                uint32_t toned = 0;
                for (int32_t shift = 0; shift < 24; shift += 8) {
                    const uint32_t channel = (pixel >> shift & 255) * t / 255;
                    toned |= (channel + (lightens ? (255 - t) * 255 / 255 : 0)) << shift;
                }
                DibSetPixel(result.View(), x, y, toned);
            };
            for (int32_t y = height - k - 1; y > k; y--) tone(upperLeft ? k : width - k - 1, y);
            for (int32_t x = k; x < width - k - 1; x++) tone(x, upperLeft ? k : height - k - 1);
        }
    }
    return result;
}

int32_t RaiseRule(int32_t channel, int32_t width, int32_t height, const FilterContext &context, int32_t x, int32_t y) {
    const int32_t s = std::min(width, height) * context.FilterRaiseSize / 100;
    const int32_t a = context.FilterRaiseRaise ? 255 : 0, b = 255 - a;
    const auto shaded = [&](int32_t weight, int32_t light) {
        return static_cast<int32_t>(Shaded(static_cast<Color>(channel), weight, (255 - weight) * light) & 255);
    };
    if (y < s) return x < y ? shaded(190, a) : x < width - y ? shaded(135, a) : shaded(190, b);
    if (y < height - s) return x < s ? shaded(190, a) : x < width - s ? channel : shaded(190, b);
    return x < height - y ? shaded(190, a) : x < width - height + y ? shaded(135, b) : shaded(190, b);
}

} // namespace

TEST(Frame, DrawsItsSidesInTurn) {
    ExpectDefinition("Frame", {.kinds = {Kind::Color, Kind::Alpha}}, FrameDefinition);
}

TEST(Frame, WorkedExample) {
    const LockedDib source = MakePicture(1, 1, 24, {0x102030});
    FilterContext context = ContextWith({{&P::FilterFrameBevel, 2}, {&P::FilterFrameMatte, 2}});
    context.paperColor = 0x0080FF;
    const LockedDib framed = RunKernel("Frame", source, context);
    ASSERT_EQ(ReadView(framed).width, 13);
    // The middle row: outer bevel, matte, inner bevel, picture, and back.
    const Pixels row = {0x7DBEFF, 0x50A8FF, 0x0080FF, 0x0080FF, 0x00376E, 0x004487, 0x102030,
                        0x7DBEFF, 0x50A8FF, 0x0080FF, 0x0080FF, 0x00376E, 0x004487};
    for (int32_t x = 0; x < 13; x++) EXPECT_EQ(DibGetPixel(framed, x, 6), row[static_cast<size_t>(x)]) << x;
    // The upper left corner belongs to the left side, the other three to the bottom or the right.
    EXPECT_EQ(DibGetPixel(framed, 0, 0), 0x7DBEFFu);
    EXPECT_EQ(DibGetPixel(framed, 12, 0), 0x004487u);
    EXPECT_EQ(DibGetPixel(framed, 0, 12), 0x7DBEFFu);
    EXPECT_EQ(DibGetPixel(framed, 12, 12), 0x004487u);
}

TEST(Round, TonesRingAfterRing) {
    ExpectDefinition("Round", {.kinds = {Kind::Color, Kind::Alpha}}, RoundDefinition);
}

TEST(Raise, ShadesFourFaces) {
    ExpectDefinition("Raise", {.kinds = {Kind::Color, Kind::Grey}},
                     ByPixel([](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
                         const uint32_t pixel = DibGetPixel(from, x, y);
                         const auto shaded = [&](uint32_t channel) {
                             return static_cast<uint32_t>(
                                 RaiseRule(static_cast<int32_t>(channel), from.width, from.height, context, x, y));
                         };
                         if (from.bits == 8) return shaded(pixel);
                         return PackColor(shaded(RedOf(pixel)), shaded(GreenOf(pixel)), shaded(BlueOf(pixel)));
                     }));
    // What is shaded loses its alpha, what is not keeps it.
    const LockedDib clear = MakePicture(5, 5, 32, Pixels(25, 0x40302010));
    const LockedDib raised = RunKernel("Raise", clear, {{&P::FilterRaiseSize, 20}});
    EXPECT_EQ(DibGetPixel(raised, 2, 2), 0x40302010u);
    EXPECT_EQ(DibGetPixel(raised, 2, 0), 0x918980u);
}

TEST(Matt, PlacesThePictureOnTheSheet) {
    struct Case {
        Setting first, second, third;
        int32_t width, height, x, y;
    };
    const auto size = [](int32_t v) { return Setting{&P::FilterMattSize, v}; };
    const auto across = [](int32_t v) { return Setting{&P::FilterMattXOffset, v}; };
    const auto down = [](int32_t v) { return Setting{&P::FilterMattYOffset, v}; };
    const Case cases[] = {
        {size(20), across(100), down(100), 11, 7, 1, 1}, {size(9), across(0), down(0), 9, 5, 0, 0},
        {size(50), across(0), down(200), 17, 13, 0, 8},  {size(100), across(133), down(66), 27, 23, 11, 6},
        {size(35), across(101), down(99), 15, 11, 3, 3},
    };
    const LockedDib source = RandomPicture(9, 5, kModeTrueColor, 4);
    for (const Case &c : cases) {
        FilterContext context = ContextWith({c.first, c.second, c.third});
        context.paperColor = 0x123456;
        const LockedDib matted = RunKernel("Matt", source, context);
        ASSERT_EQ(ReadView(matted).width, c.width);
        ASSERT_EQ(ReadView(matted).height, c.height);
        ExpectPixels(matted, [&](int32_t x, int32_t y) {
            const uint32_t pixel = DibGetPixel(source, x - c.x, y - c.y);
            return pixel == kOutside ? 0x123456u : pixel;
        });
    }
}

TEST(Matt, AbsoluteSizesMayCutThePicture) {
    const LockedDib source = RandomPicture(9, 8, kModeGrey, 4);
    FilterContext context = ContextWith({{&P::FilterMattAbsolute, 1}, {&P::FilterMattYOffset, 50}});
    context.FilterMattWidth = 4;
    context.FilterMattDepth = 13;
    context.paperColor = 0x0000FF;
    const LockedDib matted = RunKernel("Matt", source, context);
    ASSERT_EQ(ReadView(matted).width, 4);
    ASSERT_EQ(ReadView(matted).height, 13);
    ExpectPixels(matted, [&](int32_t x, int32_t y) {
        const uint32_t pixel = DibGetPixel(source, x + 2, y - 1);
        return pixel == kOutside ? 77u : pixel;
    });
    // A page of its own for every picture: the sheet starts at the picture's size.
    context.width = 31;
    context.height = 17;
    LoadPage(*EntryOf("Matt").filter, context);
    EXPECT_EQ(context.FilterMattWidth, 31);
    EXPECT_EQ(context.FilterMattDepth, 17);
}

TEST(Matt, FillsInTheTermsOfTheMode) {
    Palette768 palette = {};
    palette.rgb[3] = 250;
    palette.rgb[7] = 250;
    struct Case {
        LockedDib source;
        Color paper;
        uint32_t fill;
    };
    const Case cases[] = {
        {MakePicture(3, 3, 1), 0xFEFEFE, 0},
        {MakePicture(3, 3, 1), 0xFFFFFF, 1},
        {MakePicture(3, 3, 8), 0x646464, 100},
        {MakePicture(3, 3, 8), 0x646465, 98},
        {MakePalettePicture(3, 3, 8, palette), 0x00F000, 2},
        {MakePalettePicture(3, 3, 4, palette), 0x0000F0, 1},
        {MakePicture(3, 3, 32), 0xABCDEF, 0xABCDEF},
    };
    for (const Case &c : cases) {
        FilterContext context = ContextWith({{&P::FilterMattSize, 50}});
        context.paperColor = c.paper;
        const LockedDib matted = RunKernel("Matt", c.source, context);
        ExpectPixels(matted, [&](int32_t x, int32_t y) {
            const bool inside = x >= 1 && x < 4 && y >= 1 && y < 4;
            return inside ? 0 : c.fill;
        });
    }
}

} // namespace lmf::testing
