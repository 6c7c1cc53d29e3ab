// Shadow, Alpha shadow and Reflection: where everything comes to lie, and what becomes of the second picture.
#include "engine/apply.h"
#include "image/blur/gaussian.h"
#include "image/blur/soft_shadow.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

/// Both pictures that a whole run of a filter makes.
struct WholeRun {
    DibOwner owned; ///< the source
    FilterContext context;
    DibReadLock picture, second;

    WholeRun(const std::string &filter, const ReadView &source, const std::vector<Setting> &settings, DibHandle alpha)
        : context(Apply(filter, source, settings, alpha)), picture(context.result), second(context.secondResult) {}
    ~WholeRun() {
        picture.Unlock();
        second.Unlock();
        FreePictures(context);
    }

private:
    FilterContext Apply(const std::string &filter, const ReadView &source, const std::vector<Setting> &settings,
                        DibHandle alpha) {
        FilterContext made = ContextWith(settings);
        made.filterIndex = RowOf(filter);
        owned.Reset(DibClone(source));
        made.source = owned.handle;
        made.second = alpha;
        made.width = source.width;
        made.height = source.height;
        EXPECT_EQ(ApplyFilter(made), LMF_ERROR_OK);
        return made;
    }
};

LockedDib Flat(int32_t width, int32_t height, uint32_t bits, uint32_t value) {
    return MakePicture(width, height, bits, Pixels(static_cast<size_t>(width) * static_cast<size_t>(height), value));
}

} // namespace

TEST(SoftShadow, IsTheGaussianBlurOfTheWholeCoverage) {
    for (const auto &[width, height] : {std::pair{700, 530}, {257, 300}, {513, 8}, {1, 1}}) {
        LockedDib coverage = Flat(width, height, 8, 0);
        for (int32_t y = height / 3; y < height / 2 + 1; y++)
            for (int32_t x = width / 4; x < width / 2 + 1; x++)
                DibSetPixel(coverage.View(), x, y, static_cast<uint32_t>(155 + (x * y) % 100));
        const LockedDib whole(GaussianBlurDirect(coverage, 100, 32)), tiled(SoftShadow(coverage, 30));
        ASSERT_TRUE(tiled);
        EXPECT_TRUE(SamePicture(whole, tiled)) << width << 'x' << height;
    }
}

TEST(Shadow, SheetGrowsAsFarAsTheShadowReaches) {
    const LockedDib source = Flat(60, 40, 24, 0x204060);
    for (int32_t direction = 0; direction < 4; direction++) {
        const LockedDib result = RunKernel("Shadow", source,
                                           {{&P::FilterShadowDirection, direction},
                                            {&P::FilterShadowSize, 16},
                                            {&P::FilterShadowSoft, 20},
                                            {&P::FilterShadowOpacity, 255}});
        // Sigma 2.2 reaches 7 pixels, so 23 beyond the picture and none on the other side.
        const ReadView view = result;
        ASSERT_EQ(view.width, 83);
        ASSERT_EQ(view.height, 63);
        const int32_t left = direction & 1 ? 0 : 23, top = direction & 2 ? 0 : 23;
        ForEachPixel(source, [&](int32_t x, int32_t y) { EXPECT_EQ(DibGetPixel(view, left + x, top + y), 0x204060u); });
        const int32_t deepX = direction & 1 ? 68 : 14, deepY = direction & 2 ? 48 : 14;
        EXPECT_EQ(DibGetPixel(view, deepX, deepY), 0u) << direction;
        EXPECT_GE(RedOf(DibGetPixel(view, direction & 1 ? 82 : 0, deepY)), 253);
        EXPECT_EQ(DibGetPixel(view, direction & 1 ? 0 : 82, direction & 2 ? 62 : 0), 0xFFFFFFu);
    }
}

TEST(Shadow, FramesAndFillsTheSecondPicture) {
    const LockedDib source = Flat(30, 30, 24, 0x204060), alpha = Flat(30, 30, 8, 100);
    const std::vector<Setting> framed = {{&P::FilterShadowFrameEnable, 1},  {&P::FilterShadowFrameColor, 0xFF},
                                         {&P::FilterShadowSoft, 0},         {&P::FilterShadowSize, 5},
                                         {&P::FilterShadowColor, 0x112233}, {&P::FilterShadowOpacity, 200}};
    std::vector<Setting> clear = framed;
    clear.push_back({&P::FilterShadowAlpha, 1});
    for (const auto &[settings, second, inside, shade, corner] :
         {std::tuple{framed, alpha.owner.handle, 100u, 255u, 255u},
          std::tuple{clear, alpha.owner.handle, 100u, 200u, 0u}, std::tuple{clear, DibHandle{}, 255u, 200u, 0u}}) {
        const WholeRun run("Shadow", source, settings, second);
        ASSERT_TRUE(run.picture && run.second);
        ASSERT_EQ(run.picture.view.width, 38);
        ASSERT_EQ(run.second.view.width, 38);
        ASSERT_EQ(run.second.view.height, 38);
        EXPECT_EQ(DibGetPixel(run.picture.view, 0, 31), 0xFFu) << "the line";
        EXPECT_EQ(DibGetPixel(run.picture.view, 1, 30), 0x204060u);
        EXPECT_EQ(DibGetPixel(run.second.view, 1, 1), inside);
        EXPECT_EQ(DibGetPixel(run.second.view, 31, 0), 255u) << "the line is there";
        EXPECT_EQ(DibGetPixel(run.second.view, 34, 34), shade);
        EXPECT_EQ(DibGetPixel(run.second.view, 37, 0), corner);
    }
    EXPECT_FALSE(WholeRun("Shadow", source, framed, nullptr).second);
}

TEST(AlphaShadow, FallsOnWhatIsTransparent) {
    const LockedDib source = Flat(60, 60, 24, 0x204060);
    LockedDib alpha = Flat(60, 60, 8, 0);
    ForEachPixel(source, [&](int32_t x, int32_t y) {
        if (x >= 20 && x < 40 && y >= 20 && y < 40) DibSetPixel(alpha.View(), x, y, x < 30 ? 255 : 51);
    });
    const std::vector<Setting> settings = {{&P::FilterAlphaShadowDirection, 1},
                                           {&P::FilterAlphaShadowSize, 8},
                                           {&P::FilterAlphaShadowSoft, 0},
                                           {&P::FilterAlphaShadowOpacity, 255},
                                           {&P::FilterAlphaShadowColor, 0x0000FF}};
    const WholeRun run("Alpha shadow", source, settings, alpha.owner.handle);
    const ReadView &picture = run.picture.view, &second = run.second.view;
    EXPECT_EQ(DibGetPixel(picture, 22, 22), 0x204060u);
    EXPECT_EQ(DibGetPixel(second, 22, 22), 255u);
    EXPECT_EQ(DibGetPixel(picture, 32, 15), 0xFFu) << "shadow alone";
    EXPECT_EQ(DibGetPixel(second, 32, 15), 255u);
    EXPECT_EQ(DibGetPixel(second, 45, 15), 51u) << "shadow of what is half there";
    EXPECT_EQ(DibGetPixel(second, 34, 25), 255u) << "a fifth of the picture over the shadow";
    EXPECT_NEAR(RedOf(DibGetPixel(picture, 34, 25)), (0x60 + 4 * 0xFF) / 5, 1);
    EXPECT_NEAR(BlueOf(DibGetPixel(picture, 34, 25)), 0x20 / 5, 1);
    EXPECT_EQ(DibGetPixel(second, 5, 50), 0u);
    EXPECT_EQ(DibGetPixel(picture, 5, 50), 0x204060u) << "colour under nothing stays";
    const LockedDib alone = RunKernel("Alpha shadow", source);
    EXPECT_TRUE(SamePicture(alone, source));
}

TEST(Reflection, MirrorsThePortionBelow) {
    const LockedDib source = RandomPicture(20, 40, kModeTrueColor, 3);
    const std::vector<Setting> plain = {{&P::FilterReflectionBrt, 127},  {&P::FilterReflectionCont, 127},
                                        {&P::FilterReflectionTrans, 0},  {&P::FilterReflectionPort, 50},
                                        {&P::FilterReflectionSize, 100}, {&P::FilterReflectionDisp, 3}};
    const LockedDib result = RunKernel("Reflection", source, plain);
    ASSERT_EQ(result.View().height, 63);
    ForEachPixel(result, [&](int32_t x, int32_t y) {
        const uint32_t expected = y < 40   ? DibGetPixel(source, x, y)
                                  : y < 43 ? 0xFFFFFF
                                           : DibGetPixel(source, x, 39 - (y - 43));
        ASSERT_EQ(DibGetPixel(result, x, y), expected) << x << ',' << y;
    });
    // Half of the portion's height, from full to nothing.
    std::vector<Setting> faded = plain;
    faded.insert(faded.end(), {{&P::FilterReflectionGrad, 1}});
    faded[4].value = 50;
    const LockedDib black = RunKernel("Reflection", Flat(9, 40, 24, 0), faded);
    ASSERT_EQ(black.View().height, 53);
    for (int32_t y = 43; y < 53; y++) EXPECT_NEAR(RedOf(DibGetPixel(black, 4, y)), (y - 43) * 255 / 9, 1) << y;
}

TEST(Reflection, BeginsAboveTheBackground) {
    LockedDib source = Flat(16, 30, 24, 0xFFFFF0);
    DibSetPixel(source.View(), 5, 19, 0x000000);
    for (const auto &[tolerance, base] : {std::pair{16, 20}, {14, 30}, {255, 30}}) {
        const LockedDib result = RunKernel("Reflection", source,
                                           {{&P::FilterReflectionTol, tolerance},
                                            {&P::FilterReflectionTrans, 0},
                                            {&P::FilterReflectionPort, 100},
                                            {&P::FilterReflectionSize, 100},
                                            {&P::FilterReflectionBrt, 127},
                                            {&P::FilterReflectionCont, 127}});
        ASSERT_EQ(result.View().height, 2 * base);
        EXPECT_EQ(DibGetPixel(result, 5, 2 * base - 20), 0u) << tolerance;
    }
}

TEST(Reflection, FadesIntoTransparency) {
    const LockedDib source = Flat(10, 20, 24, 0x204060);
    LockedDib alpha = Flat(10, 20, 8, 200);
    for (int32_t x = 0; x < 10; x++)
        for (int32_t y = 16; y < 20; y++) DibSetPixel(alpha.View(), x, y, 0);
    const WholeRun run(
        "Reflection", source,
        {{&P::FilterReflectionTrans, 50}, {&P::FilterReflectionBrt, 127}, {&P::FilterReflectionCont, 127}},
        alpha.owner.handle);
    // The 16 rows that are there, 8 of them mirrored, 4 high.
    ASSERT_EQ(run.picture.view.height, 20);
    ASSERT_EQ(run.second.view.height, 20);
    EXPECT_EQ(DibGetPixel(run.second.view, 3, 15), 200u);
    for (int32_t y = 16; y < 20; y++) {
        EXPECT_NEAR(DibGetPixel(run.second.view, 3, y), 100, 1);
        EXPECT_EQ(DibGetPixel(run.picture.view, 3, y), 0x204060u) << "the colour itself does not fade";
    }
}

} // namespace lmf::testing
