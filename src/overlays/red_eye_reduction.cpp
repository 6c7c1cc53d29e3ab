// Red-eye Reduction: finds eyes with the face finder beside the library and takes the red out of pupils that a flash
// has lit. Threshold is how much stronger than green and blue the red must be to count, in thousandths.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(730, "Threshold:", &P::FilterRRedeyeThreshold, {250, 2250})
        .Help("How far red must stand out for a pixel of an eye to count, in thousandths of the other colors."),
};

} // namespace

extern constexpr Filter kRedEyeReduction = MakeFilter<kPage>(nullptr);

} // namespace lmf
