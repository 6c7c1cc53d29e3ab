// The pictures that the library carries for its filters. Programs in tools/ draw them while it is built.
#pragma once

#include <span>

#include "image/core/dib.h"

namespace lmf {

/// Side of a texture in pixels, and how many there are.
inline constexpr int32_t kTextureSide = 256, kTextureCount = 16;
/// Size of the relief in pixels.
inline constexpr int32_t kReliefWidth = 676, kReliefHeight = 476;

/// The container (image/texture/cpx.h) that holds the textures.
std::span<const uint8_t> CanvasTextureContainer();

/// Unpacks the textures, which the caller then owns: a grey picture of 8 bits, one texture below the other, so that row
/// y of texture n is row n * kTextureSide + y. Pixels are tones with a mean near 170, and each texture continues round
/// its edges. Null when memory is short.
[[nodiscard]] DibHandle CanvasTextures();

/// The relief of a cut jigsaw puzzle, as a packed bitmap.
std::span<const uint8_t> JigsawReliefBitmap();

/// Copies the relief into a picture that the caller owns: grey, 8 bits, continuing round its edges. 127 is flat;
/// bevels that face the light from the top left are brighter, others darker. Null when memory is short.
[[nodiscard]] DibHandle JigsawRelief();

} // namespace lmf
