// Face Detection and Red-eye Reduction with given lists: every function against what it is defined to be, records that
// lie anywhere, lists that are missing or too short.
#include "engine/direct_run.h"
#include "filters/artistic/obscure.h"
#include "image/blur/gaussian.h"
#include "image/core/dib_ops.h"
#include "image/draw/gdi_canvas.h"
#include "image/scale/steps.h"
#include "support/faces.h"
#include "support/reference.h"

namespace lmf::testing {

namespace {

constexpr int32_t kRow = LMF_FILTER_FACE_DETECTION, kEyeRow = LMF_FILTER_RED_EYE_REDUCTION;

/// A list, and a context that borrows it.
struct Listed {
    const BlockOwner list;
    FilterContext context;

    explicit Listed(const std::vector<FaceBox> &faces, const std::vector<FaceBox> &eyes = {}, uint64_t missing = 0)
        : list(MakeFaceList(faces, eyes, missing)), context(MakeContext()) {
        context.FaceDetectList = context.RedeyeList = list.handle;
    }
};

/// The mask as it is defined: painted whole at four times the size, in 24 bits, then shrunk.
LockedDib PlainMask(int32_t width, int32_t height, const FilterContext &context, const std::vector<FaceBox> &faces) {
    const int32_t option = context.FilterFaceDetectOption;
    const uint32_t v = 255 - static_cast<uint32_t>(context.FilterFaceDetectOpacity);
    const bool darkGround = option == 0 || option == 10 || option == 2 || option == 12;
    const bool isEllipse =
        option == 2 || option == 12 || option == 3 || option == 7 || option == 9 || option == 13 || option == 5;
    const Color dark = PackColor(v, v, v), white = 0xFFFFFF, ink = darkGround ? white : dark;
    const int32_t pen = 4 * context.FilterFaceDetectLineSize;
    GdiCanvas canvas;
    EXPECT_TRUE(GdiCanvasOpen(4 * width, 4 * height, &canvas));
    GdiCanvasPaint(canvas, RectangleShape({0, 0, 4 * width, 4 * height}), darkGround ? dark : white);
    const auto paint = [&](const auto &shape) {
        if (option == 4 || option == 5) return GdiCanvasPaint(canvas, Outline(shape, pen), ink);
        GdiCanvasPaint(canvas, shape, ink);
    };
    for (const FaceBox &f : faces) {
        const DrawBox box = {4 * f.left, 4 * f.top, 4 * f.right, 4 * f.bottom};
        const int32_t corner = std::min(f.right - f.left, f.bottom - f.top) * context.FilterFaceDetectRound * 4 / 100;
        isEllipse ? paint(EllipseShape(box)) : paint(RoundRectShape(box, corner, corner));
    }
    GdiCanvasClose(&canvas, true);
    const LockedDib drawn(canvas.picture.Release()), narrow(DibShrinkHorz(drawn, 25));
    LockedDib mask(DibShrinkVert(narrow, 25));
    if (context.FilterFaceDetectBlur < 1) return mask;
    return LockedDib(GaussianBlurDirect(mask, 50, context.FilterFaceDetectBlur));
}

/// What the source is mixed with, channel by channel.
LockedDib PlainBehind(const ReadView &source, const FilterContext &context) {
    const int32_t option = context.FilterFaceDetectOption, blur = context.FilterFaceDetectBlur;
    if (option < 6) return LockedDib(DibCreateSolid(source.width, source.height, context.paperColor));
    if (blur == 0) return LockedDib(DibClone(source));
    if (option < 8) return LockedDib(GaussianBlurDirect(source, 50, blur + 2));
    return LockedDib(Obscure(source, context.FilterFaceDetectObscure, context.FilterObscureRule, context.paperColor));
}

void ExpectPlain(const LockedDib &source, const Listed &listed, const std::vector<FaceBox> &faces) {
    const ReadView from = source;
    const LockedDib mask = PlainMask(from.width, from.height, listed.context, faces);
    const DirectRun run(kRow, source, LockedDib(), listed.context);
    ASSERT_TRUE(run.good);
    const DibReadLock made = run.Result();
    if (listed.context.FilterFaceDetectOption >= 10) {
        EXPECT_TRUE(SamePicture(made.view, source));
        EXPECT_TRUE(SamePicture(run.Second().view, LockedDib(DibToGrey(mask))));
        return;
    }
    EXPECT_EQ(made.view.bits, 24u);
    const LockedDib behind = PlainBehind(source, listed.context);
    ForEachPixel(from, [&](int32_t x, int32_t y) {
        const uint32_t c = DibGetPixel(mask, x, y) & 255, s = DibGetPixel(from, x, y), t = DibGetPixel(behind, x, y);
        const auto mix = [&](uint32_t shift) {
            return ((255 - c) * (t >> shift & 255) / 255 + c * (s >> shift & 255) / 255) & 255;
        };
        ASSERT_EQ(DibGetPixel(made.view, x, y), PackColor(mix(0), mix(8), mix(16))) << x << ',' << y;
    });
}

} // namespace

TEST(FaceDetection, EveryFunctionIsWhatItIsDefinedToBe) {
    uint32_t state = 5;
    const auto upTo = [&](int32_t most) { return static_cast<int32_t>(TestRandom(&state) / 64 % (most + 1u)); };
    for (int32_t trial = 0; trial < 14 * 12; trial++) {
        const auto &[width, height] = kManySizes[static_cast<size_t>(trial) % kManySizes.size()];
        std::vector<FaceBox> faces(1 + static_cast<size_t>(upTo(3)));
        for (FaceBox &face : faces) {
            // Crossed and beyond the edges now and then; they overlap as often as not.
            face = {upTo(width + 9) - 4, upTo(height + 9) - 4, upTo(width + 9) - 4, upTo(height + 9) - 4};
            if (upTo(4) > 0)
                face = {std::min(face.left, face.right), std::min(face.top, face.bottom),
                        std::max(face.left, face.right), std::max(face.top, face.bottom)};
        }
        Listed listed(faces);
        FilterContext &context = listed.context;
        context.FilterFaceDetectOption = trial % 14;
        context.FilterFaceDetectBlur = upTo(2) > 0 ? upTo(65) : 0;
        context.FilterFaceDetectOpacity = 8 + upTo(247);
        context.FilterFaceDetectLineSize = 1 + upTo(upTo(1) != 0 ? 63 : 4);
        context.FilterFaceDetectRound = upTo(100);
        context.FilterFaceDetectObscure = 2 + upTo(14);
        context.FilterObscureRule = upTo(3);
        context.paperColor = TestRandom(&state) & 0xFFFFFF;
        SCOPED_TRACE("function " + std::to_string(trial % 14) + " in " + std::to_string(width) + "x" +
                     std::to_string(height));
        ExpectPlain(RandomKind(upTo(3) > 0 ? Kind::Color : Kind::Alpha, width, height, state), listed, faces);
        if (HasFailure()) return;
    }
}

TEST(FaceDetection, ExtractsOneFaceAndNoneBeyondTheLast) {
    const LockedDib source = RandomDepth(9, 7, 32, 3), last(DibCropRect(source, -2, 5, 3, 9));
    Listed listed({{1, 1, 5, 4}, {-2, 5, 3, 9}});
    for (const int32_t option : {15, INT32_MAX}) {
        listed.context.FilterFaceDetectOption = option;
        const DirectRun run(kRow, source, LockedDib(), listed.context);
        EXPECT_TRUE(run.good && SamePicture(run.Result().view, last)) << option;
    }
    const int64_t before = LiveBlocks();
    for (int32_t call = 0; call < 15 * 9; call++) {
        listed.context.FilterFaceDetectOption = call / 9;
        FailAllocationAfter(call % 9);
        const DirectRun run(kRow, source, LockedDib(), listed.context);
        EXPECT_EQ(run.context.result != nullptr, run.good);
        FailAllocationAfter(-1);
    }
    EXPECT_EQ(LiveBlocks(), before) << "failures leave nothing behind";
}

TEST(FaceDetection, ListsThatAreEmptyMissingOrTooShort) {
    const LockedDib source = RandomDepth(9, 7, 32, 3);
    Listed empty({});
    empty.context.FilterFaceDetectOption = 15;
    const DirectRun copied(kRow, source, LockedDib(), empty.context);
    EXPECT_TRUE(copied.good && SamePicture(copied.Result().view, source));
    EXPECT_EQ(DirectRun(kRow, source).context.errorCode, LMF_ERROR_MEMORY) << "no list";
    const FaceBox box = {1, 1, 3, 3};
    struct Case {
        Listed listed;
        bool hasFaces, hasEyes;
    };
    // Without a search for eyes their number means nothing, and Face Detection does not look at it.
    const Case cases[] = {{Listed({box}, {box}), true, true},
                          {Listed({box}, {box}, 1), true, false},
                          {Listed({box}, {box}, 29), false, false},
                          {Listed({box}, {}, 52), false, true},
                          {Listed({}, {}, 32), false, false}};
    for (const Case &each : cases) {
        EXPECT_EQ(DirectRun(kRow, source, LockedDib(), each.listed.context).good, each.hasFaces) << &each - cases;
        EXPECT_EQ(DirectRun(kEyeRow, source, LockedDib(), each.listed.context).good, each.hasEyes) << &each - cases;
    }
}

TEST(RedEyeReduction, TakesTheRedOutOfEyesAlone) {
    struct Case {
        Color from;
        int32_t threshold;
        Color to;
    };
    const Case cases[] = {
        {PackColor(255, 0, 0), 250, PackColor(255, 0, 0)}, // of almost pure red nothing can be told
        {PackColor(255, 1, 1), 250, PackColor(255, 1, 1)},     {PackColor(255, 2, 0), 2250, PackColor(1, 2, 0)},
        {PackColor(90, 60, 61), 250, PackColor(60, 60, 61)},   {PackColor(80, 80, 80), 250, PackColor(80, 80, 80)},
        {PackColor(150, 50, 50), 750, PackColor(150, 50, 50)}, {PackColor(151, 50, 50), 750, PackColor(50, 50, 50)},
        {PackColor(225, 25, 25), 2249, PackColor(25, 25, 25)}, {PackColor(225, 25, 25), 2250, PackColor(225, 25, 25)},
    };
    // The face itself is no eye; eyes overlap and lie beyond the edges.
    Listed listed({{0, 0, 4, 4}}, {{1, 1, 3, 2}, {2, 1, INT32_MAX, 2}, {INT32_MIN, -5, 1, 1}, {3, 3, 2, 2}});
    for (const Case &each : cases) {
        listed.context.FilterRRedeyeThreshold = each.threshold;
        const LockedDib source(MakePicture(4, 4, 32, Pixels(16, each.from | 0x7F000000)));
        const DirectRun run(kEyeRow, source, LockedDib(), listed.context);
        ASSERT_TRUE(run.good);
        EXPECT_EQ(run.Result().view.bits, 24u);
        const auto isEye = [](int32_t x, int32_t y) { return (y == 1 && x >= 1) || (y == 0 && x == 0); };
        ExpectPixels(LockedDib(DibClone(run.Result().view)),
                     [&](int32_t x, int32_t y) { return isEye(x, y) ? each.to : each.from; });
    }
}

} // namespace lmf::testing
