// Social Media: fits the picture to the size that a site asks for, such as a banner or a profile picture.
// Destination is the size, an index into a list that is read from a file. Process decides what fills the space that the
// picture leaves: nothing, since the picture is cut; a colour; gradients; softened parts of the picture; or a large
// blurred copy of it, with or without a shadow. Two colours, shape, angle and place in percent make the gradient; Hue,
// Sat and Bri recolour the softened parts and Blur softens them. Key line draws a line around the picture, in pixels.
// The shadow has a margin, an offset, a softness and an opacity.
#include "engine/filter.h"
#include "overlays/social_compose.h"

namespace lmf {

namespace {

constexpr const char *kProcesses =
    "Fill;Solid bars;Single gradient bars;Double gradient bars;Double gradient bars mirrored;Soft bars;"
    "Soft bars mirrored;Soft bars reverse mirrored;Shadow on solid;Shadow on gradient;Large background;"
    "Shadow large background";

constexpr PageControl kPage[] = {
    ComboFrom(ListSource::Destinations, 1160, "Destination:", &P::FilterSocialMediaDestination)
        .Help("The size that the picture is made for."),
    Combo(1161, "Process:", &P::FilterSocialMediaProcess, kProcesses)
        .Help("What fills the space that the picture leaves, or that the picture is cut to fill it."),
    ColorButton(1162, "Solid / Start", &P::FilterSocialMediaColor1)
        .Help("The color of solid bars, and the first color of gradients."),
    ColorButton(1163, "End", &P::FilterSocialMediaColor2).Help("The last color of gradients."),
    Combo(1164, "Gradient:", &P::FilterSocialMediaGradientType, "Linear;Conic;Spherical;Cubic")
        .Help("How the colors of a gradient run: along a line, around a point, in rings or in boxes."),
    Slider(1165, "Gradient angle:", &P::FilterSocialMediaGradientAngle, {0, 359})
        .In(Unit::Degrees)
        .Help("Turns the gradient clockwise."),
    Slider(1166, "Gradient X:", &P::FilterSocialMediaGradientX, {1, 99})
        .In(Unit::Percent)
        .Help("Where the middle of the gradient lies from left to right."),
    Slider(1167, "Gradient Y:", &P::FilterSocialMediaGradientY, {1, 99})
        .In(Unit::Percent)
        .Help("Where the middle of the gradient lies from top to bottom."),
    CheckBox(1168, "Key line", &P::FilterSocialMediaKeylineEnable).Help("Draws a line around the picture."),
    Slider(1169, "Key line size:", &P::FilterSocialMediaKeylineSize, {1, 30})
        .In(Unit::Pixels)
        .Help("The width of the line around the picture."),
    ColorButton(1170, "Keyline", &P::FilterSocialMediaKeylineColor).Help("The color of the line around the picture."),
    NumberEdit(1171, "Hue:", &P::FilterSocialMediaHSBHue, {0, 360})
        .In(Unit::Degrees)
        .Help("Turns the hues of the softened parts."),
    NumberEdit(1172, "Sat:", &P::FilterSocialMediaHSBSat, {0, 200})
        .In(Unit::Percent)
        .Help("The saturation of the softened parts; 100 keeps it."),
    NumberEdit(1173, "Bri:", &P::FilterSocialMediaHSBBri, {0, 200})
        .In(Unit::Percent)
        .Help("The brightness of the softened parts; 100 keeps it."),
    NumberEdit(1174, "Blur:", &P::FilterSocialMediaBlur, {0, 100}).Help("How soft the softened parts are."),
    Slider(1176, "Shadow mrgn.:", &P::FilterSocialMediaFrameMargin, {1, 50})
        .In(Unit::Percent)
        .Help("The space around the picture in which the shadow falls."),
    CheckBox(1175, "Shadow", &P::FilterSocialMediaShadowEnable).Named("Shadow").Help("Lets the picture cast a shadow."),
    Slider(1177, "Shadow off.:", &P::FilterSocialMediaShadowOffset, {0, 10})
        .In(Unit::Percent)
        .Help("How far the shadow falls to the lower right."),
    Slider(1178, "Shadow soft.:", &P::FilterSocialMediaShadowSoftness, {0, 20})
        .In(Unit::Percent)
        .Help("How soft the edge of the shadow is."),
    Slider(1179, "Shadow opac.:", &P::FilterSocialMediaShadowOpacity, {1, 255})
        .In(Unit::Levels)
        .Help("How dark the shadow is; 255 is full."),
    ColorButton(1180, "Shadow", &P::FilterSocialMediaShadowColor)
        .Named("Shadow color")
        .Help("The color of the shadow."),
    HiddenNumber(&P::FilterSocialMediaFrameSize, {INT32_MIN, INT32_MAX})
        .Help("Kept in the settings file; it changes nothing."),
};

DibHandle SocialMediaKernel(const ReadView &source, FilterContext &context) {
    constexpr int32_t kMiddle = 50, kWhole = 100;
    const SocialLayout layout = {
        context.FilterSocialMediaDestination,
        context.FilterSocialMediaProcess,
        context.FilterSocialMediaColor1,
        context.FilterSocialMediaColor2,
        context.FilterSocialMediaGradientType,
        context.FilterSocialMediaGradientAngle,
        context.FilterSocialMediaGradientX,
        context.FilterSocialMediaGradientY,
        context.FilterSocialMediaKeylineEnable,
        context.FilterSocialMediaKeylineSize,
        context.FilterSocialMediaKeylineColor,
        context.FilterSocialMediaHSBHue,
        context.FilterSocialMediaHSBSat,
        context.FilterSocialMediaHSBBri,
        context.FilterSocialMediaBlur,
        context.FilterSocialMediaFrameMargin,
        context.FilterSocialMediaShadowEnable,
        context.FilterSocialMediaShadowOffset,
        context.FilterSocialMediaShadowSoftness,
        context.FilterSocialMediaShadowOpacity,
        context.FilterSocialMediaShadowColor,
        kMiddle,
        kMiddle,
        kWhole,
    };
    // A call that chose no destination has one without an area, which cannot be made.
    const SocialDestination destination = {"", context.destinationWidth, context.destinationDepth, 0, 0, 0};
    return SocialCompose(source, layout, destination, layout.process);
}

} // namespace

extern constexpr Filter kSocialMedia = MakeFilter<kPage>(SocialMediaKernel);

} // namespace lmf
