// The 23 blend modes.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Names of the blend modes 0 to 22, as the lists on pages show them.
inline constexpr const char *kBlendModeList =
    "Normal;Lighten;Darken;Multiply;Average;Add;Subtract;Difference;Negate;Screen;Exclude;Overlay;Soft light;"
    "Hard light;Liquid light;Vivid light;Point light;Extreme mix;Reflect;Dodge;Burn;Extreme dodge;Extreme burn";

/// 24-bit picture of the base's size, each channel blended from base and top; a top that is smaller counts as white
/// outside. A mode above 22 is Normal. New, owned by the caller; null on failure.
[[nodiscard]] DibHandle DibBlend(const ReadView &base, const ReadView &top, uint32_t mode);

} // namespace lmf
