// The 23 blend modes.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Names of the blend modes 0 to 22, as the lists on pages show them.
inline constexpr const char *kBlendModeList =
    "Normal;Lighten;Darken;Multiply;Average;Add;Subtract;Difference;Negate;Screen;Exclude;Overlay;Soft light;"
    "Hard light;Liquid light;Vivid light;Point light;Extreme mix;Reflect;Dodge;Burn;Extreme dodge;Extreme burn";

/// The same modes as numbers. In what each does to a channel, a is the base's and b the top's.
enum BlendMode : uint32_t {
    kBlendNormal,       ///< a
    kBlendLighten,      ///< the larger
    kBlendDarken,       ///< the smaller
    kBlendMultiply,     ///< their product
    kBlendAverage,      ///< their mean
    kBlendAdd,          ///< their sum
    kBlendSubtract,     ///< a less what b lacks to white
    kBlendDifference,   ///< how far they lie apart
    kBlendNegate,       ///< the negative of how far their sum lies from white
    kBlendScreen,       ///< the negative of the product of the negatives
    kBlendExclude,      ///< their sum less twice their product
    kBlendOverlay,      ///< multiply where b is dark, screen where it is light
    kBlendSoftLight,    ///< a softer overlay
    kBlendHardLight,    ///< overlay, chosen by a
    kBlendLiquidLight,  ///< subtract and add twice as strong
    kBlendVividLight,   ///< burn and dodge, chosen by b
    kBlendPointLight,   ///< darken and lighten, chosen by b
    kBlendExtremeMix,   ///< vivid light as black or white
    kBlendReflect,      ///< the square of a over the negative of b
    kBlendDodge,        ///< a over the negative of b
    kBlendBurn,         ///< the negative of the negative of a over b
    kBlendExtremeDodge, ///< as add
    kBlendExtremeBurn   ///< as subtract
};

/// What a mode makes of every pair of channels. Any other mode is Normal.
struct BlendTable {
    BlockArray<uint8_t> blended; ///< at 256 * top + base

    explicit BlendTable(uint32_t mode);
    /// False when there was no memory.
    explicit operator bool() const { return static_cast<bool>(blended); }
};

/// 24-bit picture of the base's size, each channel blended from base and top; a top that is smaller counts as white
/// outside. Any other mode is Normal. New, owned by the caller; null on failure.
[[nodiscard]] DibHandle DibBlend(const ReadView &base, const ReadView &top, uint32_t mode);

} // namespace lmf
