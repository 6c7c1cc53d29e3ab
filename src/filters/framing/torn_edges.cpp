// Torn Edges: tears the chosen sides of the picture off like paper, with a shadow beneath.
// Linear dev and Lateral dev are how far the tear strays along the side and across it, in pixels; the same Random seed
// gives the same tear. Shdw dens, Shdw soft and Shdw offset are the shadow's strength, softness and distance. Hairline
// adds fine fibres, Outline a line along the tear in a colour of its own, and Alpha puts the outline into the second
// picture.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    NumberEdit(975, "Random seed:", &P::FilterTornSeed, {1000, 32760}),
    Slider(970, "Shdw dens:", &P::FilterTornShadowDensity, {1, 255}),
    Slider(971, "Shdw soft:", &P::FilterTornShadowSoft, {0, 40}),
    Slider(972, "Shdw offset:", &P::FilterTornShadowOff, {0, 128}),
    Slider(973, "Linear dev:", &P::FilterTornLinearDev, {1, 32}),
    Slider(974, "Lateral dev:", &P::FilterTornLateralDev, {1, 32}),
    CheckBox(976, "Hairline", &P::FilterTornHairline),
    CheckBox(977, "Outline", &P::FilterTornOutlineEnable),
    CheckBox(978, "Shadow", &P::FilterTornShadowEnable),
    CheckBox(979, "Alpha", &P::FilterTornAlpha),
    ColorButton(980, "Outline", &P::FilterTornOutlineColor),
    CheckBox(981, "Sides:", &P::FilterTornLeftSide),
    CheckBox(982, "Sides:", &P::FilterTornTopSide),
    CheckBox(983, "Sides:", &P::FilterTornRightSide),
    CheckBox(984, "Sides:", &P::FilterTornBottomSide),
};
extern constexpr Filter kTornEdges = MakeFilter<kPage>(nullptr);

} // namespace lmf
