#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    CheckBox(979, "Alpha", &FilterParameters::FilterTornAlpha),
    CheckBox(984, "Sides:", &FilterParameters::FilterTornBottomSide),
    CheckBox(976, "Hairline", &FilterParameters::FilterTornHairline),
    Slider(974, "Lateral dev:", &FilterParameters::FilterTornLateralDev, {1, 32}),
    CheckBox(981, "Sides:", &FilterParameters::FilterTornLeftSide),
    Slider(973, "Linear dev:", &FilterParameters::FilterTornLinearDev, {1, 32}),
    ColorButton(980, "Outline", &FilterParameters::FilterTornOutlineColor),
    CheckBox(977, "Outline", &FilterParameters::FilterTornOutlineEnable),
    CheckBox(983, "Sides:", &FilterParameters::FilterTornRightSide),
    Slider(975, "Random seed:", &FilterParameters::FilterTornSeed, {1000, 32760}),
    Slider(970, "Shdw dens:", &FilterParameters::FilterTornShadowDensity, {1, 255}),
    CheckBox(978, "Shadow", &FilterParameters::FilterTornShadowEnable),
    Slider(972, "Shdw offset:", &FilterParameters::FilterTornShadowOff, {0, 128}),
    Slider(971, "Shdw soft:", &FilterParameters::FilterTornShadowSoft, {0, 40}),
    CheckBox(982, "Sides:", &FilterParameters::FilterTornTopSide),
};
extern constexpr FilterSlots kTornEdges = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
