// The relief of a cut jigsaw puzzle.
#pragma once

#include <vector>

#include "image/texture/textures.h"

namespace lmf::drawing {

/// Draws it as kReliefWidth by kReliefHeight tones, rows from the top, that continue round the edges: 127 where the
/// pieces are flat, brighter and darker where their bevelled edges face the light from the top left or turn from it.
std::vector<uint8_t> DrawRelief();

} // namespace lmf::drawing
