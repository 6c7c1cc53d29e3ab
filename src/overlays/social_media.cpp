#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(1174, "Blur:", &FilterParameters::FilterSocialMediaBlur, {0, 100}),
    ColorButton(1162, "Solid / Start", &FilterParameters::FilterSocialMediaColor1),
    ColorButton(1163, "End", &FilterParameters::FilterSocialMediaColor2),
    Slider(1160, "Destination:", &FilterParameters::FilterSocialMediaDestination, {0, 0}),
    Slider(1176, "Shadow mrgn.:", &FilterParameters::FilterSocialMediaFrameMargin, {1, 50}),
    HiddenNumber(&FilterParameters::FilterSocialMediaFrameSize, {INT32_MIN, INT32_MAX}),
    Slider(1165, "Gradient angle:", &FilterParameters::FilterSocialMediaGradientAngle, {0, 359}),
    Slider(1164, "Gradient:", &FilterParameters::FilterSocialMediaGradientType, {0, 3}),
    Slider(1166, "Gradient X:", &FilterParameters::FilterSocialMediaGradientX, {1, 99}),
    Slider(1167, "Gradient Y:", &FilterParameters::FilterSocialMediaGradientY, {1, 99}),
    Slider(1173, "Bri:", &FilterParameters::FilterSocialMediaHSBBri, {0, 200}),
    Slider(1171, "Hue:", &FilterParameters::FilterSocialMediaHSBHue, {0, 360}),
    Slider(1172, "Sat:", &FilterParameters::FilterSocialMediaHSBSat, {0, 200}),
    ColorButton(1170, "Keyline", &FilterParameters::FilterSocialMediaKeylineColor),
    CheckBox(1168, "Key line", &FilterParameters::FilterSocialMediaKeylineEnable),
    Slider(1169, "Key line size:", &FilterParameters::FilterSocialMediaKeylineSize, {1, 30}),
    Slider(1161, "Process:", &FilterParameters::FilterSocialMediaProcess, {0, 11}),
    ColorButton(1180, "Shadow", &FilterParameters::FilterSocialMediaShadowColor),
    CheckBox(1175, "Shadow", &FilterParameters::FilterSocialMediaShadowEnable),
    Slider(1177, "Shadow off.:", &FilterParameters::FilterSocialMediaShadowOffset, {0, 10}),
    Slider(1179, "Shadow opac.:", &FilterParameters::FilterSocialMediaShadowOpacity, {1, 255}),
    Slider(1178, "Shadow soft.:", &FilterParameters::FilterSocialMediaShadowSoftness, {0, 20}),
};
extern constexpr FilterSlots kSocialMedia = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
