// Seamless: a picture that repeats without a visible seam. Its halves are laid over each other on both axes and fade
// from one into the other, so that what were neighbours in the middle of the picture meet where copies join. Palette
// and mono pictures take each pixel whole from one of the halves, by an even pattern. The result has half the sides of
// the picture; "Maintain size" brings it back to the picture's size.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "filters/geometry/resize.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    CheckBox(820, "Maintain size", &P::FilterSeamlessMaintain)
        .Help("Brings the result, which has half the width and height, back to the size of the picture."),
};

/// How the halves of one axis fade: a position takes its far half, then more and more of the near one.
struct Fade {
    int32_t side;               ///< of the result, half the picture's rounded up
    int32_t far;                ///< where the far half starts
    BlockArray<uint16_t> share; ///< of the near half, 0 to 256

    explicit Fade(int32_t length)
        : side(length / 2 + length % 2), far(length - side), share(static_cast<uint64_t>(side)) {
        if (!share) return;
        for (int32_t i = 0; i < side; i++) {
            const double t = (i + 0.5) / side;
            share[i] = static_cast<uint16_t>(t * t * (3.0 - 2.0 * t) * 256.0 + 0.5);
        }
    }
};

/// to = far half to near half along a row, in 256ths; `shares` holds one for every byte.
LMF_MULTIVERSION
void FadeColumns(uint16_t *__restrict to, const uint8_t *__restrict farHalf, const uint8_t *__restrict nearHalf,
                 const uint16_t *__restrict shares, size_t count) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint16_t>(farHalf[i] * (256 - shares[i]) + nearHalf[i] * shares[i]);
}

LMF_MULTIVERSION
void FadeRows(uint8_t *__restrict to, const uint16_t *__restrict farHalf, const uint16_t *__restrict nearHalf,
              uint32_t share, size_t count) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint8_t>((farHalf[i] * (256 - share) + nearHalf[i] * share + 32768) >> 16);
}

/// @return false without memory.
bool MixHalves(const WriteView &to, const ReadView &from, const Fade &columns, const Fade &rows) {
    const size_t channels = from.bits / 8;
    const size_t count = static_cast<size_t>(columns.side) * channels;
    BlockArray<uint16_t> shares(count), farRow(count), nearRow(count);
    if (!shares || !farRow || !nearRow) return false;
    for (size_t i = 0; i < count; i++) shares.data[i] = columns.share.data[i / channels];
    const size_t farBytes = static_cast<size_t>(columns.far) * channels;
    for (int32_t y = 0; y < rows.side; y++) {
        const uint8_t *nearHalf = from.Row(y), *farHalf = from.Row(y + rows.far);
        FadeColumns(nearRow.data, nearHalf + farBytes, nearHalf, shares.data, count);
        FadeColumns(farRow.data, farHalf + farBytes, farHalf, shares.data, count);
        FadeRows(to.Row(y), farRow.data, nearRow.data, rows.share[y], count);
    }
    return true;
}

/// Takes pixels whole. The thresholds are those of the ordered 4 x 4 dither of Bayer (1973), turned for the rows so
/// that both choices do not fall together, and drawn together around the middle so that only a band is dithered.
void ChooseHalves(const WriteView &to, const ReadView &from, const Fade &columns, const Fade &rows) {
    static constexpr uint8_t kThresholds[4][4] = {
        {88, 131, 99, 141}, {152, 109, 163, 120}, {104, 147, 93, 136}, {168, 125, 157, 115}};
    for (int32_t y = 0; y < rows.side; y++) {
        for (int32_t x = 0; x < columns.side; x++) {
            const bool nearColumn = columns.share[x] > kThresholds[y & 3][x & 3];
            const bool nearRow = rows.share[y] > kThresholds[3 - (x & 3)][y & 3];
            DibSetPixel(to, x, y, DibGetPixel(from, nearColumn ? x : x + columns.far, nearRow ? y : y + rows.far));
        }
    }
}

/// The result without regard to "Maintain size"; the caller owns it.
DibHandle OverlapHalves(const ReadView &from, int32_t mode) {
    const Fade columns(from.width), rows(from.height);
    LockedDib result(DibCreateLike(from, columns.side, rows.side));
    const WriteView &to = result.View();
    if (!result || !columns.share || !rows.share) return nullptr;
    if (HasBytePixels(from.bits) && mode != kModePalette && mode != kModeMono) {
        if (!MixHalves(to, from, columns, rows)) return nullptr;
    } else {
        ChooseHalves(to, from, columns, rows);
    }
    return result.Release();
}

/// Twice the sides, less what an odd side has too much of. Palettes can only be enlarged by whole percentages.
DibHandle Enlarge(const ReadView &half, int32_t mode, int32_t width, int32_t height) {
    ResizeParameters parameters;
    parameters.horizontal = 200;
    parameters.constant = false;
    parameters.byDimensions = true;
    parameters.width = width;
    parameters.depth = height;
    LockedDib whole(ResizePicture(half, mode, parameters));
    if (!whole || (whole.View().width == width && whole.View().height == height)) return whole.Release();
    return DibCropRect(whole, 0, 0, width, height);
}

DibHandle SeamlessKernel(const ReadView &source, FilterContext &context) {
    LockedDib half(OverlapHalves(source, context.mode));
    if (!half || context.FilterSeamlessMaintain == 0) return half.Release();
    return Enlarge(half, context.mode, source.width, source.height);
}

} // namespace

extern constexpr Filter kSeamless = MakeFilter<kPage>(SeamlessKernel);

} // namespace lmf
