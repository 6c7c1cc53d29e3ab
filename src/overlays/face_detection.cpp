// Face Detection: finds faces with the face finder beside the library, and shows, hides, frames, blurs or coarsens
// them, or cuts one out. Function chooses; its entries after the list extract one face each, as many as were found.
// Obscure is the side of the cells that coarsen a face, in pixels; Mask blur the softness of the mask's edge and of the
// blur; Mask opacity how much of the paper colour covers the rest; Line size the width of a frame in pixels; Round how
// round the corners of a rectangle are, in percent.
#include <algorithm>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "filters/artistic/obscure.h"
#include "image/blur/gaussian.h"
#include "image/core/dib_ops.h"
#include "image/core/div255.h"
#include "image/core/pixel_map.h"
#include "image/core/rows.h"
#include "image/draw/row_painter.h"
#include "image/scale/steps.h"
#include "overlays/face_list.h"

namespace lmf {

namespace {

constexpr const char *kFunctions =
    "Show faces (rectanglular);Mask faces (rectangular);Show faces (elliptical);Mask faces (elliptical);"
    "Frame faces (rectangular);Frame faces (elliptical);Blur faces (rectangular);Blur faces (elliptical);"
    "Obscure faces (rectangular);Obscure faces (elliptical);Show faces alpha (rectanglular);"
    "Mask faces alpha (rectangular);Show faces alpha (elliptical);Mask faces alpha (elliptical)";

constexpr PageControl kPage[] = {
    Combo(440, "Function:", &P::FilterFaceDetectOption, kFunctions)
        .Edit(0, INT32_MAX)
        .Help("What happens to the faces; entries after the list cut out one face each."),
    Slider(441, "Obscure:", &P::FilterFaceDetectObscure, {2, 16})
        .In(Unit::Pixels)
        .Help("The side of the cells that make a face unrecognizable."),
    Slider(442, "Mask blur:", &P::FilterFaceDetectBlur, {0, 65})
        .In(Unit::Pixels)
        .Help("How soft the edge of the mask and the blur of a face are."),
    Slider(443, "Mask opacity:", &P::FilterFaceDetectOpacity, {8, 255})
        .In(Unit::Levels)
        .Help("How much of the paper color covers everything but the faces."),
    Slider(444, "Line size:", &P::FilterFaceDetectLineSize, {1, 64})
        .In(Unit::Pixels)
        .Help("The width of the frame around a face."),
    Slider(445, "Round:", &P::FilterFaceDetectRound, {0, 100})
        .In(Unit::Percent)
        .Help("How round the corners of a rectangle are."),
};

/// What the mask of a function is, 255 where the picture stays.
enum class Drawing : uint8_t {
    Shown,  ///< the faces stay
    Masked, ///< all but the faces stays
    Framed  ///< all but a line around each face stays
};

/// What is seen where the picture does not stay.
enum class Effect : uint8_t { Paper, Blur, Obscure, Transparency };

/// The functions of the list in their order.
struct Function {
    bool isElliptical;
    Drawing drawing;
    Effect effect;
};
constexpr Function kEffects[] = {
    {false, Drawing::Shown, Effect::Paper},        {false, Drawing::Masked, Effect::Paper},
    {true, Drawing::Shown, Effect::Paper},         {true, Drawing::Masked, Effect::Paper},
    {false, Drawing::Framed, Effect::Paper},       {true, Drawing::Framed, Effect::Paper},
    {false, Drawing::Masked, Effect::Blur},        {true, Drawing::Masked, Effect::Blur},
    {false, Drawing::Masked, Effect::Obscure},     {true, Drawing::Masked, Effect::Obscure},
    {false, Drawing::Shown, Effect::Transparency}, {false, Drawing::Masked, Effect::Transparency},
    {true, Drawing::Shown, Effect::Transparency},  {true, Drawing::Masked, Effect::Transparency},
};

/// The mask is drawn at a multiple of its size, for smooth edges.
constexpr int32_t kFiner = 4;
constexpr int32_t kShrinkPercent = 100 / kFiner;
/// Of the blur of mask and faces, in tenths of a pixel.
constexpr int32_t kBlurRadius = 50;

DrawBox FineBox(const FaceRecord &face) {
    return {int64_t{face.left} * kFiner, int64_t{face.top} * kFiner, int64_t{face.right} * kFiner,
            int64_t{face.bottom} * kFiner};
}

/// @return a picture of the mask's size, 8-bit grey: `ground`, with each shape in `ink`
template <typename Shape>
DibHandle DrawMask(const ReadView &source, const BlockArray<Shape> &shapes, int64_t count, uint8_t ground,
                   uint8_t ink) {
    LockedDib mask(DibCreateGrey(source.width, source.height));
    if (!mask || !shapes || std::max(source.width, source.height) > INT32_MAX / kFiner) return nullptr;
    const int32_t width = source.width * kFiner;
    const auto drawRow = [&](int32_t y, uint8_t *row) {
        std::fill_n(row, width, ground);
        for (int64_t i = 0; i < count; i++) {
            if (!shapes[i].bounds.HasRow(y)) continue;
            ForEachSpan(shapes[i], y, [&](const RowSpan &span) {
                const int64_t left = std::max<int64_t>(span.left, 0), right = std::min<int64_t>(span.right, width);
                if (left < right) std::fill(row + left, row + right, ink);
            });
        }
    };
    const auto takeRow = [&](int32_t y, const uint8_t *row) { std::copy_n(row, source.width, mask.View().Row(y)); };
    const RowFormat fine = {width, source.height * kFiner, 8};
    return ShrinkRows(fine, drawRow, kShrinkPercent, kShrinkPercent, takeRow) ? mask.Release() : nullptr;
}

/// DrawMask with a shape that `make` gives for each face.
template <typename Make>
DibHandle DrawShapes(const ReadView &source, std::span<const FaceRecord> faces, uint8_t ground, uint8_t ink,
                     Make make) {
    BlockArray<decltype(make(faces[0]))> shapes(faces.size());
    if (!shapes) return nullptr;
    for (size_t i = 0; i < faces.size(); i++) shapes.data[i] = make(faces[i]);
    return DrawMask(source, shapes, static_cast<int64_t>(faces.size()), ground, ink);
}

/// 8-bit grey picture of the source's size, 255 where the source stays. Null on failure.
DibHandle FaceMask(const ReadView &source, const FilterContext &context, std::span<const FaceRecord> faces) {
    const Function function = kEffects[context.FilterFaceDetectOption];
    const auto dark = static_cast<uint8_t>(255 - context.FilterFaceDetectOpacity);
    const bool isShown = function.drawing == Drawing::Shown, isFramed = function.drawing == Drawing::Framed;
    const uint8_t ground = isShown ? dark : 255, ink = isShown ? 255 : dark;
    const int32_t pen = context.FilterFaceDetectLineSize * kFiner;
    const auto ellipse = [](const FaceRecord &face) { return EllipseShape(FineBox(face)); };
    const auto rectangle = [&](const FaceRecord &face) {
        const int64_t side = std::min(int64_t{face.right} - face.left, int64_t{face.bottom} - face.top);
        const int64_t corner = side * context.FilterFaceDetectRound * kFiner / 100;
        return RoundRectShape(FineBox(face), corner, corner);
    };
    const auto draw = [&](auto shape) {
        if (!isFramed) return DrawShapes(source, faces, ground, ink, shape);
        return DrawShapes(source, faces, ground, ink,
                          [&](const FaceRecord &face) { return Outline(shape(face), pen); });
    };
    LockedDib mask(function.isElliptical ? draw(ellipse) : draw(rectangle));
    if (!mask || context.FilterFaceDetectBlur < 1) return mask.Release();
    LockedDib blurred(GaussianBlurDirect(mask, kBlurRadius, context.FilterFaceDetectBlur));
    return blurred ? blurred.Release() : mask.Release();
}

/// Brings the levels of the mask to those that a grey picture of it has. @return a new picture, or null
DibHandle GreyOfMask(const ReadView &mask) {
    ToneTable grey;
    for (int32_t i = 0; i < 256; i++) grey.at[i] = static_cast<uint8_t>(WeightedGrey(i, i, i));
    PixelPass pass(mask);
    if (!pass) return nullptr;
    MapChannels(pass, grey);
    return pass.Finish();
}

/// Rows first <= y < end, counted as they lie in memory.
struct RowRange {
    int32_t first = 0, end = 0;
};

/// The rows between the first and the last one that the mask does not keep whole; none where it keeps all.
RowRange TouchedRows(const ReadView &mask) {
    const auto isWhole = [&](int32_t y) {
        const uint8_t *row = mask.MemoryRow(y);
        return std::all_of(row, row + mask.width, [](uint8_t level) { return level == 255; });
    };
    RowRange rows = {0, mask.height};
    while (rows.end > 0 && isWhole(rows.end - 1)) rows.end--;
    while (rows.first < rows.end && isWhole(rows.first)) rows.first++;
    return rows;
}

/// What is seen where the source does not stay, in rows of its width.
struct Backdrop {
    LockedDib made;
    ReadView view;        ///< of what was made, or the source itself where that is to be seen
    int32_t firstRow = 0; ///< of the source, that the view begins with; the one row of a plain colour serves for all

    Backdrop(const ReadView &source, const RowRange &rows, const FilterContext &context, Effect effect) : view(source) {
        const int32_t blur = context.FilterFaceDetectBlur;
        if (effect == Effect::Paper) {
            Take(DibCreateSolid(source.width, 1, context.paperColor));
        } else if (effect == Effect::Obscure && blur > 0) {
            Take(Obscure(source, context.FilterFaceDetectObscure, context.FilterObscureRule, context.paperColor));
        } else if (blur > 0) {
            // More rows than the blur is wide on either side, so that it sees what it would see in the whole picture.
            constexpr int32_t kAround = 2 * kBlurRadius / 10 + 2;
            firstRow = std::max(rows.first - kAround, 0);
            view.bottom = source.MemoryRow(firstRow);
            view.height = std::min(rows.end + kAround, source.height) - firstRow;
            Take(GaussianBlurDirect(view, kBlurRadius, blur + 2));
        }
    }
    int32_t RowFor(int32_t y) const { return view.height == 1 ? 0 : y - firstRow; }

private:
    void Take(DibHandle picture) {
        made = LockedDib(picture);
        view = made;
    }
};

/// Mixes rows of 24-bit pixels: `from` where the mask is 255, `other` where it is 0. Each share is truncated.
LMF_MULTIVERSION
void MixRow(uint8_t *__restrict to, const uint8_t *from, const uint8_t *other, const uint8_t *__restrict mask,
            int32_t width) {
    for (int32_t x = 0; x < width; x++)
        for (int32_t c = x * 3; c < x * 3 + 3; c++) to[c] = MixBytes(other[c], from[c], mask[x]);
}

/// The 24-bit result of the functions that change the picture itself; null on failure.
DibHandle MixFaces(const ReadView &source, const ReadView &mask, const FilterContext &context, Effect effect) {
    const RowRange touched = TouchedRows(mask);
    const Backdrop backdrop(source, touched, context, effect);
    LockedDib result(DibCreate(source.width, source.height, nullptr, 24));
    if (backdrop.view.width == 0 || !result) return nullptr;
    RgbRows from(source), behind(backdrop.view);
    if (!from || !behind) return nullptr;
    for (int32_t y = 0; y < source.height; y++) {
        uint8_t *to = result.View().MemoryRow(y);
        if (y < touched.first || y >= touched.end)
            std::copy_n(from.MemoryRow(y), static_cast<size_t>(source.width) * 3, to);
        else
            MixRow(to, from.MemoryRow(y), behind.MemoryRow(backdrop.RowFor(y)), mask.MemoryRow(y), source.width);
    }
    return result.Release();
}

DibHandle FaceDetectionKernel(const ReadView &source, FilterContext &context) {
    const FaceRecords list(context.FaceDetectList, FaceRecords::Faces);
    if (!list) return nullptr;
    const std::span<const FaceRecord> faces = list.Get();
    if (faces.empty()) return DibClone(source);

    constexpr auto kFirstFace = static_cast<int32_t>(std::size(kEffects));
    if (context.FilterFaceDetectOption >= kFirstFace) {
        const auto wanted = static_cast<size_t>(context.FilterFaceDetectOption - kFirstFace);
        const FaceRecord &face = faces[std::min(wanted, faces.size() - 1)];
        return DibCropRect(source, face.left, face.top, face.right, face.bottom);
    }
    const Effect effect = kEffects[context.FilterFaceDetectOption].effect;
    const LockedDib mask(FaceMask(source, context, faces));
    if (!mask) return nullptr;
    if (effect != Effect::Transparency) return MixFaces(source, mask, context, effect);
    LockedDib result(DibClone(source));
    const DibHandle alpha = result ? GreyOfMask(mask) : nullptr;
    if (alpha == nullptr) return nullptr;
    ReplaceSecond(context, alpha);
    return result.Release();
}

void PrepareFaceDetection(FilterContext &context, uint32_t phase) {
    PrepareFaceList(context, phase, &FilterContext::FaceDetectList, false);
}

} // namespace

extern constexpr Filter kFaceDetection =
    MakeFilter<kPage>(FaceDetectionKernel, {.FilterPrepare = PrepareFaceDetection});

} // namespace lmf
