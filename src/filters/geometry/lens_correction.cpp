// Lens Correction: straightens lines that a wide lens bends outwards. The strength, in thousandths, is how much the
// lens bends; the zoom, in percent above the whole, widens the view, and what then lies outside takes the paper colour.
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/geometry/mirror.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1120, "Strength:", &P::FilterLensCorrectStr, {0, 4000})
        .In(Unit::None, 1000)
        .Help("How strongly the picture is bent to straighten what the lens bowed outwards."),
    Slider(1121, "Zoom:", &P::FilterLensCorrectZoom, {0, 100})
        .In(Unit::Percent)
        .Help("Makes the picture smaller, so that more of what lies at its edges comes into view."),
};

struct Lens {
    double cx, cy; ///< centre, pixels
    double reach;  ///< pixels
    double zoom;
};

Lens LensOf(const ReadView &view, const FilterContext &context) {
    const double width = view.width, height = view.height;
    double strength = context.FilterLensCorrectStr / 1000.0;
    if (strength == 0) strength = 0.00001;
    return {width * 0.5, height * 0.5, std::sqrt(width * width + height * height) / strength,
            context.FilterLensCorrectZoom / 100.0 + 1.0};
}

LMF_MULTIVERSION
void ReachesOfRow(double *__restrict reaches, int32_t begin, int32_t end, Lens lens, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = x - lens.cx;
        reaches[x] = std::sqrt(dx * dx + dy * dy) / lens.reach;
    }
}

/// Source columns and rows; truncating a value above -1 gives at least 0.
LMF_MULTIVERSION
void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict thetas, int32_t width, Lens lens,
              double dy) {
    for (int32_t x = 0; x < width; x++) {
        xs[x] = thetas[x] * (x - lens.cx) * lens.zoom + lens.cx;
        ys[x] = thetas[x] * dy * lens.zoom + lens.cy;
    }
}

/// @param outside  the pixel of positions outside the picture, as it lies in memory
template <size_t kBytes>
void ReadRow(uint8_t *to, const ReadView &from, const double *xs, const double *ys, const uint8_t *outside) {
    for (int32_t x = 0; x < from.width; x++, to += kBytes) {
        const bool inside = xs[x] > -1 && xs[x] < from.width && ys[x] > -1 && ys[x] < from.height;
        const auto fromX = static_cast<int32_t>(inside ? xs[x] : 0), fromY = static_cast<int32_t>(inside ? ys[x] : 0);
        std::memcpy(to, inside ? from.Row(fromY) + static_cast<size_t>(fromX) * kBytes : outside, kBytes);
    }
}

DibHandle LensCorrectionKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source, Alpha::Carried);
    const int32_t width = source.width, channels = pass.Channels();
    BlockArray<double> memory(static_cast<uint64_t>(width) * 3);
    if (!pass || !memory) return nullptr;
    double *thetas = memory.data, *xs = thetas + width, *ys = xs + width;
    const Lens lens = LensOf(source, context);
    const MirrorAxis columns(width, lens.cx);
    // Indexes take the low byte of the colour, and 32-bit pixels an alpha of 0.
    uint8_t outside[4] = {};
    StoreBgr(outside, context.paperColor);
    if (channels == 1) outside[0] = RedOf(context.paperColor);
    const auto readRow = channels == 1 ? ReadRow<1> : channels == 3 ? ReadRow<3> : ReadRow<4>;
    ForEachMirroredRow(
        MirrorAxis(source.height, lens.cy),
        [&](int32_t y) {
            FillMirrored(columns, 0, width, {thetas}, [&](int32_t begin, int32_t end) {
                ReachesOfRow(thetas, begin, end, lens, y - lens.cy);
                for (int32_t x = begin; x < end; x++)
                    thetas[x] = thetas[x] == 0 ? 1.0 : std::atan(thetas[x]) / thetas[x];
            });
        },
        [&](int32_t y) {
            PlaceRow(xs, ys, thetas, width, lens, y - lens.cy);
            readRow(pass.To().Row(y), pass.From(), xs, ys, outside);
        });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kLensCorrection = MakeFilter<kPage>(LensCorrectionKernel);

} // namespace lmf
