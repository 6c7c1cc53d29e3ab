// Obscure: mosaic. Square cells from the top left corner take the average of the pixels that they cover.
// Level is the side of a cell in pixels. Rule size is the width of the grid that is drawn between the cells in the
// paper colour, at most half a cell; 0 draws none.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(630, "Level:", &P::FilterObscureLevel, {2, 128}),
    Slider(631, "Rule size:", &P::FilterObscureRule, {0, 64}),
};
extern constexpr Filter kObscure = MakeFilter<kPage>(nullptr);

} // namespace lmf
