// Lens Correction: straightens lines that a wide lens bends outwards. The strength, in thousandths, is how much the
// lens bends; the zoom, in percent above the whole, widens the view, and what then lies outside takes the paper colour.
#include <cmath>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/geometry/mirror.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1120, "Strength:", &P::FilterLensCorrectStr, {0, 4000}),
    Slider(1121, "Zoom:", &P::FilterLensCorrectZoom, {0, 100}),
};

struct Lens {
    double cx, cy; ///< centre, pixels
    double reach;  ///< pixels
    double zoom;
};

static Lens LensOf(const ReadView &view, const FilterContext &context) {
    const double width = view.width, height = view.height;
    double strength = context.FilterLensCorrectStr / 1000.0;
    if (strength == 0) strength = 0.00001;
    return {width * 0.5, height * 0.5, std::sqrt(width * width + height * height) / strength,
            context.FilterLensCorrectZoom / 100.0 + 1.0};
}

LMF_MULTIVERSION
static void ReachesOfRow(double *__restrict reaches, int32_t begin, int32_t end, Lens lens, double dy) {
    for (int32_t x = begin; x < end; x++) {
        const double dx = x - lens.cx;
        reaches[x] = std::sqrt(dx * dx + dy * dy) / lens.reach;
    }
}

/// Source columns and rows; truncating a value above -1 gives at least 0.
LMF_MULTIVERSION
static void PlaceRow(double *__restrict xs, double *__restrict ys, const double *__restrict thetas, int32_t width,
                     Lens lens, double dy) {
    for (int32_t x = 0; x < width; x++) {
        xs[x] = thetas[x] * (x - lens.cx) * lens.zoom + lens.cx;
        ys[x] = thetas[x] * dy * lens.zoom + lens.cy;
    }
}

static void ReadRow(const PixelPass &pass, int32_t row, const double *xs, const double *ys, Color paper) {
    const ReadView &from = pass.from;
    uint8_t *target = pass.to.Row(row);
    for (int32_t x = 0; x < from.width; x++) {
        const bool inside = xs[x] > -1 && xs[x] < from.width && ys[x] > -1 && ys[x] < from.height;
        const auto fromX = static_cast<int32_t>(inside ? xs[x] : 0), fromY = static_cast<int32_t>(inside ? ys[x] : 0);
        if (inside && from.bits == 24)
            std::memcpy(target + static_cast<size_t>(x) * 3, from.Row(fromY) + static_cast<size_t>(fromX) * 3, 3);
        else
            DibSetPixel(pass.to, x, row, inside ? DibGetPixel(pass.from, fromX, fromY) : paper);
    }
}

static DibHandle LensCorrectionKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t width = pass.from.width, height = pass.from.height;
    BlockArray<double> memory(static_cast<uint64_t>(width) * 3);
    if (!memory) return nullptr;
    double *thetas = memory.data, *xs = thetas + width, *ys = xs + width;
    const Lens lens = LensOf(pass.from, context);
    const MirrorAxis columns(width, lens.cx);
    ForEachMirroredRow(
        MirrorAxis(height, lens.cy),
        [&](int32_t y) {
            FillMirrored(columns, 0, width, {thetas}, [&](int32_t begin, int32_t end) {
                ReachesOfRow(thetas, begin, end, lens, y - lens.cy);
                for (int32_t x = begin; x < end; x++)
                    thetas[x] = thetas[x] == 0 ? 1.0 : std::atan(thetas[x]) / thetas[x];
            });
        },
        [&](int32_t y) {
            PlaceRow(xs, ys, thetas, width, lens, y - lens.cy);
            ReadRow(pass, y, xs, ys, context.paperColor);
        });
    return pass.Finish();
}

extern constexpr Filter kLensCorrection = MakeFilter<kPage>(LensCorrectionKernel);

} // namespace lmf
