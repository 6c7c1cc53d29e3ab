// The 23 blend modes.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Names of the blend modes 0 to 22, as the lists on pages show them.
inline constexpr const char *kBlendModeList =
    "Normal;Lighten;Darken;Multiply;Average;Add;Subtract;Difference;Negate;Screen;Exclude;Overlay;Soft light;"
    "Hard light;Liquid light;Vivid light;Point light;Extreme mix;Reflect;Dodge;Burn;Extreme dodge;Extreme burn";

/// What a mode makes of every pair of channels. A mode above 22 is Normal.
struct BlendTable {
    BlockArray<uint8_t> blended; ///< at 256 * top + base

    explicit BlendTable(uint32_t mode);
    /// False when there was no memory.
    explicit operator bool() const { return static_cast<bool>(blended); }
};

/// 24-bit picture of the base's size, each channel blended from base and top; a top that is smaller counts as white
/// outside. New, owned by the caller; null on failure.
[[nodiscard]] DibHandle DibBlend(const ReadView &base, const ReadView &top, uint32_t mode);

} // namespace lmf
