// Round: a soft bevel along the picture's edge, made of rings whose tone fades inwards.
// Bevel size is its width in pixels. Raised on lightens the left and top and darkens the right and bottom; off is the
// reverse.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(810, "Bevel size:", &P::FilterRoundBevelsize, {2, 50}),
    CheckBox(811, "Raised", &P::FilterRoundRaised),
};
extern constexpr Filter kRound = MakeFilter<kPage>(nullptr);

} // namespace lmf
