// Ripple: rings of waves about a centre, as where a stone fell into water. The centre is in percent of half the sides
// with 100 added, amplitude, wavelength and phase are hundredths of pixels and of a radian; Dissipate lets the waves
// die away towards the lower right corner and scales them by the energy, in percent.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/geometry/four_taps.h"
#include "image/geometry/mirror.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    OffsetSlider(790, "Center X:", &P::FilterWaterCenterX, {0, 200}, 100),
    OffsetSlider(791, "Center Y:", &P::FilterWaterCenterY, {0, 200}, 100),
    HundredthsSlider(792, "Amplitude:", &P::FilterWaterAmplitude, {70, 8000}),
    HundredthsSlider(793, "Wavelgth:", &P::FilterWaterWavelength, {400, 5000}),
    Slider(794, "Phase:", &P::FilterWaterPhase, {0, 360}),
    Slider(795, "Energy:", &P::FilterWaterEnergy, {1, 100}),
    CheckBox(796, "Dissipate", &P::FilterWaterDissipate),
};

using FloatLanes = float __attribute__((vector_size(16)));

struct Waves {
    double cx, cy; ///< centre, pixels
    double amplitude, wavelength;
    double phase; ///< radians
    bool dissipate;
    double energy;
    double reach; ///< from the centre to the lower right corner, pixels
};

/// Centre of an axis: whole pixels away from the middle.
static double CentreOf(int32_t side, int32_t setting) {
    return static_cast<double>(static_cast<int64_t>(side) * (static_cast<int64_t>(setting) - 100) / 100) + side * 0.5;
}

static Waves WavesOf(const ReadView &view, const FilterContext &context) {
    Waves waves{};
    waves.cx = CentreOf(view.width, context.FilterWaterCenterX);
    waves.cy = CentreOf(view.height, context.FilterWaterCenterY);
    waves.amplitude = context.FilterWaterAmplitude / 100.0;
    waves.wavelength = context.FilterWaterWavelength / 100.0;
    waves.phase = context.FilterWaterPhase / 100.0;
    waves.energy = context.FilterWaterEnergy / 100.0;
    waves.dissipate = context.FilterWaterDissipate != 0;
    const double right = view.width - waves.cx, bottom = view.height - waves.cy;
    waves.reach = std::sqrt(bottom * bottom + right * right);
    return waves;
}

LMF_MULTIVERSION
static void DistancesOfRow(double *__restrict distances, int32_t begin, int32_t end, double cx, double dy) {
    for (int32_t x = begin; x < end; x++) distances[x] = std::sqrt((x - cx) * (x - cx) + dy * dy);
}

/// Displacement, the same on both axes, at a distance from the centre.
static double ShiftAt(const Waves &waves, double distance) {
    const double shift = std::sin(distance / waves.wavelength * (2 * std::numbers::pi) + waves.phase) * waves.amplitude;
    return waves.dissipate ? shift * (1 - distance / (waves.reach + 0.0001)) * waves.energy : shift;
}

/// A position on an axis, held inside 0 to last; what is not a number becomes 0.
static double HoldInside(double position, double last) {
    return position >= 0 ? std::min(position, last) : 0;
}

/// Mixes single precision bytes of four neighbours; those outside count as 0.
static uint32_t MixPixel(const ReadView &from, double sx, double sy) {
    const auto ix = static_cast<int32_t>(sx), iy = static_cast<int32_t>(sy);
    const bool hasRight = ix + 1 < from.width, hasBottom = iy + 1 < from.height;
    const uint32_t p0 = DibGetPixel(from, ix, iy);
    const uint32_t p1 = hasRight ? DibGetPixel(from, ix + 1, iy) : 0;
    const uint32_t p2 = hasBottom ? DibGetPixel(from, ix, iy + 1) : 0;
    const uint32_t p3 = hasRight && hasBottom ? DibGetPixel(from, ix + 1, iy + 1) : 0;
    const auto fx = static_cast<float>(sx - ix), fy = static_cast<float>(sy - iy);
    uint32_t mixed = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto level = [shift](uint32_t pixel) { return static_cast<float>(pixel >> shift & 0xFF); };
        const float value =
            (level(p0) * (1 - fx) + level(p1) * fx) * (1 - fy) + (level(p2) * (1 - fx) + level(p3) * fx) * fy;
        mixed |= (static_cast<uint32_t>(value) & 0xFF) << shift;
    }
    return mixed;
}

LMF_MULTIVERSION
static void MixRow24(const PixelPass &pass, int32_t y, const double *__restrict shifts) {
    const ReadView view = pass.from;
    uint8_t *target = pass.to.Row(y);
    for (int32_t x = 0; x < view.width; x++, target += 3) {
        const double sx = HoldInside(x + shifts[x], view.width - 1), sy = HoldInside(y + shifts[x], view.height - 1);
        const auto ix = static_cast<int32_t>(sx), iy = static_cast<int32_t>(sy);
        if (ix + 1 >= view.width || iy + 1 >= view.height) {
            DibSetPixel(pass.to, x, y, MixPixel(pass.from, sx, sy));
            continue;
        }
        FourTaps taps;
        const uint8_t *row = view.Row(iy);
        ReadTaps24(taps, row, row - view.stride, ix, ix + 1);
        const auto fx = static_cast<float>(sx - ix), fy = static_cast<float>(sy - iy);
        const FloatLanes mixed = (__builtin_convertvector(taps.p00, FloatLanes) * (1 - fx) +
                                  __builtin_convertvector(taps.p10, FloatLanes) * fx) *
                                     (1 - fy) +
                                 (__builtin_convertvector(taps.p01, FloatLanes) * (1 - fx) +
                                  __builtin_convertvector(taps.p11, FloatLanes) * fx) *
                                     fy;
        StoreLanes24(target, __builtin_convertvector(mixed, IntLanes));
    }
}

static DibHandle RippleKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &view = pass.from;
    BlockArray<double> shifts(static_cast<uint64_t>(view.width));
    if (!shifts) return nullptr;
    const Waves waves = WavesOf(view, context);
    const MirrorAxis columns(view.width, waves.cx);
    ForEachMirroredRow(
        MirrorAxis(view.height, waves.cy),
        [&](int32_t y) {
            FillMirrored(columns, 0, view.width, {shifts.data}, [&](int32_t begin, int32_t end) {
                DistancesOfRow(shifts.data, begin, end, waves.cx, y - waves.cy);
                for (int32_t x = begin; x < end; x++) shifts[x] = ShiftAt(waves, shifts[x]);
            });
        },
        [&](int32_t y) {
            if (view.bits == 24) return MixRow24(pass, y, shifts.data);
            for (int32_t x = 0; x < view.width; x++)
                DibSetPixel(pass.to, x, y,
                            MixPixel(pass.from, HoldInside(x + shifts[x], view.width - 1),
                                     HoldInside(y + shifts[x], view.height - 1)));
        });
    return pass.Finish();
}

extern constexpr Filter kRipple = MakeFilter<kPage>(RippleKernel);

} // namespace lmf
