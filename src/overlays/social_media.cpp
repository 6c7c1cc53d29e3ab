// Social Media: fits the picture to the size that a site asks for, such as a banner or a profile picture.
// Destination is the size, an index into a list that is read from a file. Process decides what fills the space that the
// picture leaves: nothing, since the picture is cut; a colour; gradients; softened parts of the picture; or a large
// blurred copy of it, with or without a shadow. Two colours, shape, angle and place in percent make the gradient; Hue,
// Sat and Bri recolour the softened parts and Blur softens them. Key line draws a line around the picture, in pixels.
// The shadow has a margin, an offset, a softness and an opacity.
#include "engine/filter.h"

namespace lmf {

static constexpr const char *kProcesses =
    "Fill;Solid bars;Single gradient bars;Double gradient bars;Double gradient bars mirrored;Soft bars;"
    "Soft bars mirrored;Soft bars reverse mirrored;Shadow on solid;Shadow on gradient;Large background;"
    "Shadow large background";

static constexpr PageControl kPage[] = {
    ComboFrom(ListSource::Destinations, 1160, "Destination:", &P::FilterSocialMediaDestination),
    Combo(1161, "Process:", &P::FilterSocialMediaProcess, kProcesses),
    ColorButton(1162, "Solid / Start", &P::FilterSocialMediaColor1),
    ColorButton(1163, "End", &P::FilterSocialMediaColor2),
    Combo(1164, "Gradient:", &P::FilterSocialMediaGradientType, "Linear;Conic;Spherical;Cubic"),
    Slider(1165, "Gradient angle:", &P::FilterSocialMediaGradientAngle, {0, 359}),
    Slider(1166, "Gradient X:", &P::FilterSocialMediaGradientX, {1, 99}),
    Slider(1167, "Gradient Y:", &P::FilterSocialMediaGradientY, {1, 99}),
    CheckBox(1168, "Key line", &P::FilterSocialMediaKeylineEnable),
    Slider(1169, "Key line size:", &P::FilterSocialMediaKeylineSize, {1, 30}),
    ColorButton(1170, "Keyline", &P::FilterSocialMediaKeylineColor),
    NumberEdit(1171, "Hue:", &P::FilterSocialMediaHSBHue, {0, 360}),
    NumberEdit(1172, "Sat:", &P::FilterSocialMediaHSBSat, {0, 200}),
    NumberEdit(1173, "Bri:", &P::FilterSocialMediaHSBBri, {0, 200}),
    NumberEdit(1174, "Blur:", &P::FilterSocialMediaBlur, {0, 100}),
    Slider(1176, "Shadow mrgn.:", &P::FilterSocialMediaFrameMargin, {1, 50}),
    CheckBox(1175, "Shadow", &P::FilterSocialMediaShadowEnable),
    Slider(1177, "Shadow off.:", &P::FilterSocialMediaShadowOffset, {0, 10}),
    Slider(1178, "Shadow soft.:", &P::FilterSocialMediaShadowSoftness, {0, 20}),
    Slider(1179, "Shadow opac.:", &P::FilterSocialMediaShadowOpacity, {1, 255}),
    ColorButton(1180, "Shadow", &P::FilterSocialMediaShadowColor),
    HiddenNumber(&P::FilterSocialMediaFrameSize, {INT32_MIN, INT32_MAX}),
};
extern constexpr Filter kSocialMedia = MakeFilter<kPage>(nullptr);

} // namespace lmf
