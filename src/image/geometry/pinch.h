// The warp of Implode and Explode.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Magnifies what lies about a point, or draws it together, out to an ellipse about it through the left or the upper
/// edge. New picture of the source's size and depth; null without memory.
/// @param amount  1 magnifies most, -1 draws together most
/// @param xPart, yPart  place of the point, in parts of the sides
/// @param background  colour of what comes from outside the picture
[[nodiscard]] DibHandle DibPinch(const ReadView &source, double amount, double xPart, double yPart, Color background);

} // namespace lmf
