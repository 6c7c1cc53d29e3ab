// The sixteen textures of the Canvas filter.
#pragma once

#include "image/texture/textures.h"
#include "tile.h"

namespace lmf::drawing {

struct Texture {
    Tile (*draw)();   ///< brightness in any unit, from any level
    double deviation; ///< standard deviation that the tones get
};

/// In the order of the filter's list.
extern const Texture kTextures[kTextureCount];

/// The mean tone of every texture.
inline constexpr double kMeanTone = 170;

/// Draws a texture as kSide by kSide tones, rows from the top.
std::vector<uint8_t> DrawTexture(const Texture &texture);

} // namespace lmf::drawing
