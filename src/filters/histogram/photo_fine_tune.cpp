#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1098, "Brightness:", &FilterParameters::FilterPhotoAdjBright, {1000, 255}).Edit(0, 255),
    Slider(1096, "Contrast:", &FilterParameters::FilterPhotoAdjCont, {1000, 255}).Edit(0, 255),
    CheckBox(1099, "", &FilterParameters::FilterPhotoAdjEnableBright),
    CheckBox(1097, "", &FilterParameters::FilterPhotoAdjEnableCont),
    CheckBox(1101, "", &FilterParameters::FilterPhotoAdjEnableHighlight),
    CheckBox(1105, "", &FilterParameters::FilterPhotoAdjEnableMidtone),
    CheckBox(1091, "", &FilterParameters::FilterPhotoAdjEnableTemp),
    CheckBox(1093, "", &FilterParameters::FilterPhotoAdjEnableTint),
    CheckBox(1095, "", &FilterParameters::FilterPhotoAdjEnableSat),
    CheckBox(1103, "", &FilterParameters::FilterPhotoAdjEnableShadow),
    OffsetSlider(1100, "Highlight:", &FilterParameters::FilterPhotoAdjHighlight, {1000, 200}, 100).Edit(0, 200),
    OffsetSlider(1104, "Mid-tones:", &FilterParameters::FilterPhotoAdjMidtone, {1000, 200}, 100).Edit(0, 200),
    CheckBox(1106, "Normalize", &FilterParameters::FilterPhotoAdjNormalize),
    OffsetSlider(1094, "Saturation:", &FilterParameters::FilterPhotoAdjSat, {1000, 200}, 100).Edit(0, 200),
    OffsetSlider(1102, "Shadows:", &FilterParameters::FilterPhotoAdjShadow, {1000, 200}, 100).Edit(0, 200),
    Slider(1090, "Color temp:", &FilterParameters::FilterPhotoAdjTemp, {1000, 9000}),
    OffsetSlider(1092, "Tint:", &FilterParameters::FilterPhotoAdjTint, {1000, 200}, 100).Edit(0, 200),
    CheckBox(1107, "White balance", &FilterParameters::FilterPhotoAdjWhitebal),
};
extern constexpr FilterSlots kPhotoFineTune = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
