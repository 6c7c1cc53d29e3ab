// Raise: turns the picture's edge into a bevel that seems raised or sunken.
// Size is the width of the bevel, in percent of the picture's smaller side. Raise on lights the top and left, off the
// bottom and right.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(710, "Size:", &P::FilterRaiseSize, {1, 49}),
    CheckBox(711, "Raise", &P::FilterRaiseRaise),
};
extern constexpr Filter kRaise = MakeFilter<kPage>(nullptr);

} // namespace lmf
