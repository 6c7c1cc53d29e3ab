// One filter over one picture, as a user means it: what the filter cannot take is made into something that it can, and
// transparency goes where the picture goes. The filter itself sees plain calls only.
#pragma once

#include "catalogue.h"
#include "library.h"
#include "picture.h"

namespace lmf::host {

/// What Rotate, Shear and Matt put where they leave the picture's ground.
enum class Paper {
    kByPicture, // nothing, for a picture with alpha; else the paper color
    kColored,   // the paper color
    kTransparent
};

/// How a picture meets a filter.
struct Treatment {
    Paper paper = Paper::kByPicture;
    bool strictDepth = false; // grey and palette pictures are not raised to true color
    bool upright = false;     // pictures are turned as their orientation tells before anything else
};

/// Runs the filter with `call`. The picture is replaced by the result; on failure its pixels are as they were, but for
/// the depth. `report` takes what was done to make it fit.
[[nodiscard]] FilterOutcome RunFilter(const Library &library, const Json &filter, const FilterCall &call,
                                      const Treatment &treatment, Picture &picture, Report &report);

/// Turns the pixels as the orientation tells, which is then the usual one.
[[nodiscard]] bool TurnUpright(Picture &picture, Report &report);

} // namespace lmf::host
