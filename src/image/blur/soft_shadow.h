// Soft shadows: a coverage (8-bit grey, 255 where the thing that casts the shadow is) blurred by a Gaussian. All of
// them have the same radius; the setting "Softness", 0 to 40, makes the curve wider.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// How far a shadow of this softness reaches beyond the thing's outline before it is gone, in pixels: 1 to 10.
[[nodiscard]] int32_t ShadowReach(int32_t softness);

/// The coverage blurred to a shadow of its own size, as GaussianBlurDirect does it, but without the work where nothing
/// changes. @return a new 8-bit picture, or null
[[nodiscard]] DibHandle SoftShadow(const ReadView &coverage, int32_t softness);

/// The shadow that a coverage throws when it falls `right` and `down` pixels away, either of which may be negative.
/// What is outside the picture throws none. @return a new 8-bit picture, or null
[[nodiscard]] DibHandle ThrownShadow(const ReadView &coverage, int32_t right, int32_t down, int32_t softness);

/// One side of the shadow of a rectangle: to[i], 0 to 255, is how much of it there is at place i of `count`, for a
/// rectangle that reaches from `start` to before `end`, 0 <= start <= end <= count. The rectangle's shadow is the
/// product of both sides. @return false without memory
[[nodiscard]] bool ShadowProfile(uint8_t *to, int32_t count, int32_t start, int32_t end, int32_t softness);

} // namespace lmf
