// Ripple: rings of waves about a centre, as where a stone fell into water. The centre is in percent of the sides away
// from the middle, with 100 added; amplitude and wavelength are hundredths of pixels, the phase hundredths of a radian.
// Dissipate lets the waves die away towards the lower right corner and scales them by the energy, in percent.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/geometry/four_taps.h"
#include "image/geometry/mirror.h"

namespace lmf {

namespace {

constexpr int32_t kMiddle = 100;

constexpr PageControl kPage[] = {
    OffsetSlider(790, "Center X:", &P::FilterWaterCenterX, {0, 2 * kMiddle}, kMiddle)
        .In(Unit::Percent)
        .Help("How far right of the middle the rings have their centre; negative values go left."),
    OffsetSlider(791, "Center Y:", &P::FilterWaterCenterY, {0, 2 * kMiddle}, kMiddle)
        .In(Unit::Percent)
        .Help("How far below the middle the rings have their centre; negative values go up."),
    HundredthsSlider(792, "Amplitude:", &P::FilterWaterAmplitude, {70, 8000})
        .In(Unit::Pixels, 100)
        .Help("How far the waves push the picture to and fro."),
    HundredthsSlider(793, "Wavelgth:", &P::FilterWaterWavelength, {400, 5000})
        .In(Unit::Pixels, 100)
        .Help("The distance from one ring to the next."),
    Slider(794, "Phase:", &P::FilterWaterPhase, {0, 360})
        .In(Unit::None, 100)
        .Help("Where in its swing the wave starts at the centre; raising it draws the rings inwards."),
    Slider(795, "Energy:", &P::FilterWaterEnergy, {1, 100})
        .In(Unit::Percent)
        .Help("How much of the amplitude the waves have while Dissipate is set."),
    CheckBox(796, "Dissipate", &P::FilterWaterDissipate)
        .Help("Lets the waves grow weaker the farther they are from the centre."),
};

struct Rings {
    double cx, cy; ///< centre, pixels
    double amplitude, wavelength;
    double phase; ///< radians
    bool dissipate;
    double energy;
    double reach; ///< from the centre to the lower right corner, pixels
};

/// Centre of an axis: whole pixels away from the middle.
double CentreOf(int32_t side, int32_t setting) {
    return static_cast<double>(int64_t{side} * (setting - kMiddle) / 100) + side * 0.5;
}

Rings RingsOf(const ReadView &view, const FilterContext &context) {
    Rings rings{};
    rings.cx = CentreOf(view.width, context.FilterWaterCenterX);
    rings.cy = CentreOf(view.height, context.FilterWaterCenterY);
    rings.amplitude = context.FilterWaterAmplitude / 100.0;
    rings.wavelength = context.FilterWaterWavelength / 100.0;
    rings.phase = context.FilterWaterPhase / 100.0;
    rings.energy = context.FilterWaterEnergy / 100.0;
    rings.dissipate = context.FilterWaterDissipate != 0;
    const double right = view.width - rings.cx, bottom = view.height - rings.cy;
    rings.reach = std::sqrt(bottom * bottom + right * right);
    return rings;
}

LMF_MULTIVERSION
void DistancesOfRow(double *__restrict distances, int32_t begin, int32_t end, double cx, double dy) {
    for (int32_t x = begin; x < end; x++) distances[x] = std::sqrt((x - cx) * (x - cx) + dy * dy);
}

/// Displacement, the same on both axes, at a distance from the centre.
double ShiftAt(const Rings &rings, double distance) {
    const double shift = std::sin(distance / rings.wavelength * (2 * std::numbers::pi) + rings.phase) * rings.amplitude;
    return rings.dissipate ? shift * (1 - distance / (rings.reach + 0.0001)) * rings.energy : shift;
}

/// Mixes single precision levels of four neighbours, one channel or all at once.
template <typename Real>
inline __attribute__((always_inline)) void Mix(Real &mixed, const FourTaps<Real> &p, float fx, float fy) {
    mixed = (p.p00 * (1 - fx) + p.p10 * fx) * (1 - fy) + (p.p01 * (1 - fx) + p.p11 * fx) * fy;
}

/// The mix along the right and the lower edge, where neighbours that are missing count as 0.
uint32_t MixEdgePixel(const ReadView &from, int32_t x, int32_t y, float fx, float fy) {
    const bool hasRight = x + 1 < from.width, hasBottom = y + 1 < from.height;
    const uint32_t p00 = DibGetPixel(from, x, y);
    const uint32_t p10 = hasRight ? DibGetPixel(from, x + 1, y) : 0;
    const uint32_t p01 = hasBottom ? DibGetPixel(from, x, y + 1) : 0;
    const uint32_t p11 = hasRight && hasBottom ? DibGetPixel(from, x + 1, y + 1) : 0;
    uint32_t pixel = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto level = [shift](uint32_t value) { return static_cast<float>(value >> shift & 0xFF); };
        float mixed;
        Mix(mixed, {level(p00), level(p10), level(p01), level(p11)}, fx, fy);
        pixel |= (static_cast<uint32_t>(mixed) & 0xFF) << shift;
    }
    return pixel;
}

template <size_t kBytes>
inline __attribute__((always_inline)) void MixRowOf(const WriteView &to, const ReadView &from, int32_t y,
                                                    const double *__restrict shifts) {
    const ReadView view = from;
    const double right = view.width - 1, bottom = view.height - 1;
    uint8_t *target = to.Row(y);
    for (int32_t x = 0; x < view.width; x++, target += kBytes) {
        const double sx = std::clamp(x + shifts[x], 0.0, right), sy = std::clamp(y + shifts[x], 0.0, bottom);
        const auto ix = static_cast<int32_t>(sx), iy = static_cast<int32_t>(sy);
        const auto fx = static_cast<float>(sx - ix), fy = static_cast<float>(sy - iy);
        if (ix + 1 >= view.width || iy + 1 >= view.height) {
            DibSetPixel(to, x, y, MixEdgePixel(from, ix, iy, fx, fy));
            continue;
        }
        FourTaps<IntPixel<kBytes>> taps;
        const uint8_t *row = view.Row(iy);
        ReadTaps<kBytes>(taps, row, row - view.stride, ix, ix + 1);
        FourTaps<FloatPixel<kBytes>> levels;
        ConvertTaps(levels, taps);
        FloatPixel<kBytes> mixed;
        Mix(mixed, levels, fx, fy);
        IntPixel<kBytes> pixel;
        ConvertPixel(pixel, mixed);
        StorePixel<kBytes>(target, pixel);
    }
}

LMF_MULTIVERSION
void MixRow(const WriteView &to, const ReadView &from, int32_t y, const double *__restrict shifts) {
    switch (from.bits) {
    case 8:
        return MixRowOf<1>(to, from, y, shifts);
    case 24:
        return MixRowOf<3>(to, from, y, shifts);
    default:
        return MixRowOf<4>(to, from, y, shifts);
    }
}

DibHandle RippleKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source, Alpha::Carried);
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    BlockArray<double> shifts(static_cast<uint64_t>(from.width));
    if (!shifts) return nullptr;
    const Rings rings = RingsOf(from, context);
    const MirrorAxis columns(from.width, rings.cx);
    ForEachMirroredRow(
        MirrorAxis(from.height, rings.cy),
        [&](int32_t y) {
            FillMirrored(columns, 0, from.width, {shifts.data}, [&](int32_t begin, int32_t end) {
                DistancesOfRow(shifts.data, begin, end, rings.cx, y - rings.cy);
                for (int32_t x = begin; x < end; x++) shifts[x] = ShiftAt(rings, shifts[x]);
            });
        },
        [&](int32_t y) { MixRow(pass.To(), from, y, shifts.data); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kRipple = MakeFilter<kPage>(RippleKernel);

} // namespace lmf
