// Rotate: turns the picture by tenths of a degree, to the left, or to the right with the second direction. Quarter and
// half turns lose nothing. Other angles make the picture as large as its turned corners need, or keep its size with
// "Preserve size"; the rest takes the paper colour. "Interpolate" mixes neighbouring pixels, true colour and grey only;
// "Maximum quality" then goes by three shears. These rotations leave behind how much of each pixel the picture covers,
// as an 8-bit picture that a host can take for alpha.
#include <cmath>
#include <numbers>

#include "engine/filter.h"
#include "image/color/paper.h"
#include "image/geometry/free_rotation.h"
#include "image/geometry/turns.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    NumberEdit(800, "Angle (degrees):", &P::FilterRotateAngle, {0, 3599})
        .InTenths()
        .In(Unit::Degrees, 10)
        .Help("How far the picture is turned: counter-clockwise, or clockwise with the direction Right."),
    RadioButton(801, "", &P::FilterRotateDirection, 0, {0, 1}).Named("Left").Help("Turns the picture to the left."),
    RadioButton(802, "", &P::FilterRotateDirection, 1, {0, 1}).Named("Right").Help("Turns the picture to the right."),
    CheckBox(805, "Interpolate", &P::FilterRotateInterpolate)
        .Help("Mixes neighbouring pixels for smooth edges; true colour and grey pictures only."),
    CheckBox(806, "Preserve size", &P::FilterRotatePreserve)
        .Help("Keeps the size of the picture, so that its corners may be cut off."),
    CheckBox(807, "Maximum quality", &P::FilterRotateShear)
        .Help("Keeps fine detail sharper while Interpolate is set; takes longer."),
};

constexpr int32_t kQuarter = 900; ///< tenths of a degree

/// Length of the shadow that the picture throws on an axis. Rounding errors must not make it a pixel longer.
int32_t BoxSide(double along, double across, const RotationPlan &turn) {
    const double side = std::ceil(along * std::fabs(turn.cosine) + across * std::fabs(turn.sine) - 1e-6);
    return side <= INT32_MAX ? std::max(static_cast<int32_t>(side), 1) : 0;
}

RotationPlan PlanFor(int32_t tenths, const ReadView &from, bool preserveSize) {
    const double angle = tenths / 10.0 * std::numbers::pi / 180.0;
    RotationPlan plan{std::sin(angle), std::cos(angle), from.width, from.height, 0};
    if (!preserveSize) {
        const RotationPlan turn = plan;
        plan.width = BoxSide(from.width, from.height, turn);
        plan.height = BoxSide(from.height, from.width, turn);
    }
    return plan;
}

/// By one, two or three quarters to the left.
DibHandle TurnQuarters(const ReadView &source, int32_t quarters) {
    if (quarters == 2) return DibTurnHalf(source);
    return quarters == 1 ? DibTurnAnticlockwise(source) : DibTurnClockwise(source);
}

/// A quarter turn to the left or right, then shears by the 45 degrees at most that are left.
RotatedPicture TurnAndShear(const ReadView &source, int32_t tenths, RotationPlan plan) {
    const int32_t quarters = (tenths + kQuarter / 2) / kQuarter;
    const double rest = (tenths - quarters * kQuarter) / 10.0 * std::numbers::pi / 180.0;
    plan.sine = std::sin(rest);
    plan.cosine = std::cos(rest);
    if (quarters % 4 == 0) return RotateByShears(source, plan);
    const LockedDib turned(TurnQuarters(source, quarters % 4));
    return turned ? RotateByShears(turned, plan) : RotatedPicture{};
}

DibHandle RotateFreely(const ReadView &source, int32_t tenths, FilterContext &context) {
    RotationPlan plan = PlanFor(tenths, source, context.FilterRotatePreserve != 0);
    plan.fill = PaperFillValue(context.paperColor, context.mode, source);
    const bool interpolate =
        context.FilterRotateInterpolate != 0 && (context.mode == kModeTrueColor || context.mode == kModeGrey);
    const bool byShears = interpolate && context.FilterRotateShear != 0 && HasBytePixels(source.bits);
    RotatedPicture rotated = byShears ? TurnAndShear(source, tenths, plan) : RotateDirect(source, plan, interpolate);
    if (!rotated.picture) return nullptr;
    BlockFree(context.auxImage);
    context.auxImage = rotated.coverage.Release();
    return rotated.picture.Release();
}

DibHandle RotateKernel(const ReadView &source, FilterContext &context) {
    int32_t tenths = context.FilterRotateAngle;
    if (context.FilterRotateDirection == 1) tenths = 4 * kQuarter - tenths;
    switch (tenths) {
    case 0:
        return CanReadPixels(source.bits) ? DibClone(source) : nullptr;
    case kQuarter:
    case 2 * kQuarter:
    case 3 * kQuarter:
        return TurnQuarters(source, tenths / kQuarter);
    default:
        return RotateFreely(source, tenths % (4 * kQuarter), context);
    }
}

} // namespace

extern constexpr Filter kRotate = MakeFilter<kPage>(RotateKernel);

} // namespace lmf
