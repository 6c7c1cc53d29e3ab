// Rotate: turns the picture by tenths of a degree, to the left, or to the right with the second direction. Quarter and
// half turns lose nothing. Other angles make the picture as large as its turned corners need, or keep its size with
// "Preserve size"; the rest takes the paper colour. "Interpolate" mixes neighbouring pixels, true colour and grey only;
// "Maximum quality" then goes by three shears. These rotations leave behind how much of each pixel the picture covers,
// as an 8-bit picture that a host can take for alpha.
#include <cmath>
#include <numbers>

#include "engine/slots.h"
#include "filters/geometry/free_rotation.h"
#include "filters/geometry/turns.h"
#include "image/paper.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    NumberEdit(800, "Angle (degrees):", &FilterParameters::FilterRotateAngle, {0, 3599}),
    RadioButton(801, "", &FilterParameters::FilterRotateDirection, 0, {0, 1}),
    RadioButton(802, "", &FilterParameters::FilterRotateDirection, 1, {0, 1}),
    CheckBox(805, "Interpolate", &FilterParameters::FilterRotateInterpolate),
    CheckBox(806, "Preserve size", &FilterParameters::FilterRotatePreserve),
    CheckBox(807, "Maximum quality", &FilterParameters::FilterRotateShear),
};

static constexpr int64_t kQuarter = 900; ///< tenths of a degree

/// Length of the shadow that the picture throws on an axis. Rounding errors must not make it a pixel longer.
static int32_t BoxSide(double along, double across, const RotationPlan &turn) {
    const double side = std::ceil(along * std::fabs(turn.cosine) + across * std::fabs(turn.sine) - 1e-6);
    return side <= INT32_MAX ? std::max(static_cast<int32_t>(side), 1) : 0;
}

static RotationPlan PlanFor(int64_t tenths, const DibView &from, bool preserveSize) {
    const double angle = static_cast<double>(tenths) / 10.0 * std::numbers::pi / 180.0;
    RotationPlan plan{std::sin(angle), std::cos(angle), from.width, from.height, 0};
    if (!preserveSize) {
        const RotationPlan turn = plan;
        plan.width = BoxSide(from.width, from.height, turn);
        plan.height = BoxSide(from.height, from.width, turn);
    }
    return plan;
}

/// By one, two or three quarters to the left.
static DibHandle TurnQuarters(DibHandle source, int64_t quarters) {
    if (quarters == 2) return DibTurnHalf(source);
    return quarters == 1 ? DibTurnAnticlockwise(source) : DibTurnClockwise(source);
}

/// A quarter turn to the left or right, then shears by the 45 degrees at most that are left.
static RotatedPicture TurnAndShear(DibHandle source, int64_t tenths, RotationPlan plan) {
    const int64_t quarters = (tenths + kQuarter / 2) / kQuarter;
    const double rest = static_cast<double>(tenths - quarters * kQuarter) / 10.0 * std::numbers::pi / 180.0;
    plan.sine = std::sin(rest);
    plan.cosine = std::cos(rest);
    DibOwner turned;
    if (quarters % 4 != 0) turned.Reset(TurnQuarters(source, quarters % 4));
    DibLock from(turned ? turned.handle : source);
    if (!from) return {};
    return RotateByShears(from, plan);
}

static DibHandle RotateFreely(DibHandle source, int64_t tenths, FilterContext *context) {
    DibLock from(source);
    if (!from) return nullptr;
    RotationPlan plan = PlanFor(tenths, from.view, context->FilterRotatePreserve != 0);
    plan.fill = PaperFillValue(context->paperColor, context->mode, from.image);
    const bool interpolate =
        context->FilterRotateInterpolate != 0 && (context->mode == kModeTrueColor || context->mode == kModeGrey);
    const bool byShears = interpolate && context->FilterRotateShear != 0 && HasBytePixels(from.view.bits);
    RotatedPicture rotated = byShears ? TurnAndShear(source, tenths, plan) : RotateDirect(from, plan, interpolate);
    if (!rotated.picture) return nullptr;
    BlockFree(context->auxImage);
    context->auxImage = rotated.coverage.Release();
    return rotated.picture.Release();
}

static DibHandle RotateKernel(DibHandle source, FilterContext *context) {
    int64_t tenths = context->FilterRotateAngle;
    if (context->FilterRotateDirection == 1) tenths = 4 * kQuarter - tenths;
    switch (tenths) {
    case 0: {
        DibLock from(source);
        return from && CanReadPixels(from.view.bits) ? DibClone(source) : nullptr;
    }
    case kQuarter:
    case 2 * kQuarter:
    case 3 * kQuarter:
        return TurnQuarters(source, tenths / kQuarter);
    default:
        // Values from elsewhere than the page may be out of range.
        return RotateFreely(source, (tenths % (4 * kQuarter) + 4 * kQuarter) % (4 * kQuarter), context);
    }
}

extern constexpr FilterSlots kRotate = MakeSlots<kPage>(RotateKernel);

} // namespace lmf
