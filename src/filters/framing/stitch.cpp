// Stitch: joins the clipboard's picture to this one.
// Mode is the side where it is joined, Gutter the width of a strip of the paper colour between the two, in pixels.
// Resize brings it to the length of the side that it is joined to.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(930, "Gutter:", &P::FilterStitchGutter, {0, 64}),
    Combo(931, "Mode:", &P::FilterStitchMode, "Right;Below;Left;Above"),
    CheckBox(932, "Resize", &P::FilterStitchResize),
};
extern constexpr Filter kStitch = MakeFilter<kPage>(nullptr);

} // namespace lmf
