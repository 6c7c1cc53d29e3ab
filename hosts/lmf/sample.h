// A picture of the program's own to try filters on.
#pragma once

#include "picture.h"

namespace lmf::host {

/// Draws a lake before mountains with a balloon over it: 1280 x 853 pixels in true color, the same at every call.
[[nodiscard]] bool DrawSample(Picture &picture, Report &report);

} // namespace lmf::host
