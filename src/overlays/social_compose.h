// Pictures fitted to the size that a site asks for.
#pragma once

#include "image/core/dib.h"
#include "overlays/social_destinations.h"

namespace lmf {

/// What fills the space that the picture leaves; the numbers are those of the setting.
enum SocialProcess : int32_t {
    kSocialFill, ///< nothing: the picture is cut
    kSocialSolidBars,
    kSocialGradientBars,               ///< one gradient behind all
    kSocialDoubleGradientBars,         ///< a gradient for each of two bars
    kSocialDoubleGradientBarsMirrored, ///< the second one turned over
    kSocialSoftBars,                   ///< the picture, soft and recoloured, in each of two bars
    kSocialSoftBarsMirrored,           ///< the second one turned over
    kSocialSoftBarsReverseMirrored,    ///< the first one turned over
    kSocialShadowOnSolid,
    kSocialShadowOnGradient,
    kSocialLargeBackground, ///< the picture, large, soft and recoloured
    kSocialShadowLargeBackground
};

/// How a picture is composed. The settings of the filter in the order of its page, and what the page does not show.
struct SocialLayout {
    int32_t destination; ///< number in the list; SocialCompose does not look at this one and the next
    int32_t process;
    int32_t color1, color2;         ///< 0x00BBGGRR
    int32_t gradientType;           ///< a GradientType
    int32_t gradientAngle;          ///< degrees
    int32_t gradientX, gradientY;   ///< percent of the sides
    int32_t keylineEnable;          ///< a line around the picture
    int32_t keylineSize;            ///< pixels
    int32_t keylineColor;           ///< 0x00BBGGRR
    int32_t hsbHue;                 ///< of soft parts: 180 keeps the hue
    int32_t hsbSat, hsbBri;         ///< percent; 100 keeps them
    int32_t blur;                   ///< tenths of a pixel
    int32_t frameMargin;            ///< percent by which the picture with a shadow is smaller
    int32_t shadowEnable;           ///< its room is left in any case
    int32_t shadowOffset;           ///< percent of the shorter side
    int32_t shadowSoftness;         ///< up to 2 is none
    int32_t shadowOpacity;          ///< 255 is full
    int32_t shadowColor;            ///< 0x00BBGGRR
    int32_t placementX, placementY; ///< where the picture lies in the space there is, percent; 50 is the middle
    int32_t scale;                  ///< percent of the picture's size where it is cut; 100 cuts nothing off
};

/// Composes a picture of any depth.
/// @param process  a SocialProcess; any other is kSocialFill
/// @return a new 24-bit picture of the destination's size that the caller owns. Null without memory, for a destination
///         without an area, where a bar would have none, and where margin and shadow leave nothing of the picture.
[[nodiscard]] DibHandle SocialCompose(const ReadView &picture, const SocialLayout &layout,
                                      const SocialDestination &destination, int32_t process);

} // namespace lmf
