// Torn Edges: tears the chosen sides of the picture off like paper, with a shadow beneath.
// Linear dev and Lateral dev are how far the tear strays along the side and across it, in pixels; the same Random seed
// gives the same tear. Shdw dens, Shdw soft and Shdw offset are the shadow's strength, softness and distance. Hairline
// adds fine fibres, Outline a line along the tear in a colour of its own, and Alpha puts the outline into the second
// picture.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    NumberEdit(975, "Random seed:", &FilterParameters::FilterTornSeed, {1000, 32760}),
    Slider(970, "Shdw dens:", &FilterParameters::FilterTornShadowDensity, {1, 255}),
    Slider(971, "Shdw soft:", &FilterParameters::FilterTornShadowSoft, {0, 40}),
    Slider(972, "Shdw offset:", &FilterParameters::FilterTornShadowOff, {0, 128}),
    Slider(973, "Linear dev:", &FilterParameters::FilterTornLinearDev, {1, 32}),
    Slider(974, "Lateral dev:", &FilterParameters::FilterTornLateralDev, {1, 32}),
    CheckBox(976, "Hairline", &FilterParameters::FilterTornHairline),
    CheckBox(977, "Outline", &FilterParameters::FilterTornOutlineEnable),
    CheckBox(978, "Shadow", &FilterParameters::FilterTornShadowEnable),
    CheckBox(979, "Alpha", &FilterParameters::FilterTornAlpha),
    ColorButton(980, "Outline", &FilterParameters::FilterTornOutlineColor),
    CheckBox(981, "Sides:", &FilterParameters::FilterTornLeftSide),
    CheckBox(982, "Sides:", &FilterParameters::FilterTornTopSide),
    CheckBox(983, "Sides:", &FilterParameters::FilterTornRightSide),
    CheckBox(984, "Sides:", &FilterParameters::FilterTornBottomSide),
};
extern constexpr FilterSlots kTornEdges = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
