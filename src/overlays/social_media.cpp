// Social Media: fits the picture to the size that a site asks for, such as a banner or a profile picture.
// Destination is the size, an index into a list that is read from a file. Process decides what fills the space that the
// picture leaves: nothing, since the picture is cut; a colour; gradients; softened parts of the picture; or a large
// blurred copy of it, with or without a shadow. Two colours, shape, angle and place in percent make the gradient; Hue,
// Sat and Bri recolour the softened parts and Blur softens them. Key line draws a line around the picture, in pixels.
// The shadow has a margin, an offset, a softness and an opacity.
#include "engine/slots.h"

namespace lmf {

static constexpr const char *kProcesses =
    "Fill;Solid bars;Single gradient bars;Double gradient bars;Double gradient bars mirrored;Soft bars;"
    "Soft bars mirrored;Soft bars reverse mirrored;Shadow on solid;Shadow on gradient;Large background;"
    "Shadow large background";

static constexpr PageControl kPage[] = {
    FileCombo(1160, "Destination:", &FilterParameters::FilterSocialMediaDestination),
    Combo(1161, "Process:", &FilterParameters::FilterSocialMediaProcess, kProcesses),
    ColorButton(1162, "Solid / Start", &FilterParameters::FilterSocialMediaColor1),
    ColorButton(1163, "End", &FilterParameters::FilterSocialMediaColor2),
    Combo(1164, "Gradient:", &FilterParameters::FilterSocialMediaGradientType, "Linear;Conic;Spherical;Cubic"),
    Slider(1165, "Gradient angle:", &FilterParameters::FilterSocialMediaGradientAngle, {0, 359}),
    Slider(1166, "Gradient X:", &FilterParameters::FilterSocialMediaGradientX, {1, 99}),
    Slider(1167, "Gradient Y:", &FilterParameters::FilterSocialMediaGradientY, {1, 99}),
    CheckBox(1168, "Key line", &FilterParameters::FilterSocialMediaKeylineEnable),
    Slider(1169, "Key line size:", &FilterParameters::FilterSocialMediaKeylineSize, {1, 30}),
    ColorButton(1170, "Keyline", &FilterParameters::FilterSocialMediaKeylineColor),
    NumberEdit(1171, "Hue:", &FilterParameters::FilterSocialMediaHSBHue, {0, 360}),
    NumberEdit(1172, "Sat:", &FilterParameters::FilterSocialMediaHSBSat, {0, 200}),
    NumberEdit(1173, "Bri:", &FilterParameters::FilterSocialMediaHSBBri, {0, 200}),
    NumberEdit(1174, "Blur:", &FilterParameters::FilterSocialMediaBlur, {0, 100}),
    Slider(1176, "Shadow mrgn.:", &FilterParameters::FilterSocialMediaFrameMargin, {1, 50}),
    CheckBox(1175, "Shadow", &FilterParameters::FilterSocialMediaShadowEnable),
    Slider(1177, "Shadow off.:", &FilterParameters::FilterSocialMediaShadowOffset, {0, 10}),
    Slider(1178, "Shadow soft.:", &FilterParameters::FilterSocialMediaShadowSoftness, {0, 20}),
    Slider(1179, "Shadow opac.:", &FilterParameters::FilterSocialMediaShadowOpacity, {1, 255}),
    ColorButton(1180, "Shadow", &FilterParameters::FilterSocialMediaShadowColor),
    HiddenNumber(&FilterParameters::FilterSocialMediaFrameSize, {INT32_MIN, INT32_MAX}),
};
extern constexpr FilterSlots kSocialMedia = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
