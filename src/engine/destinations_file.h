// The file with the sizes that Social Media makes pictures for: one that the host names, or a list of the user's own in
// the product's folder, under either name of kDestinationFiles, or else the one beside the library.
#pragma once

#include "engine/filter_context.h"
#include "overlays/social_destinations.h"

namespace lmf {

/// Reads the list and calls `take` for each destination, as ReadDestinations does.
/// @param path  of the list that the host names; or null
/// @return false where there is no list, or it cannot be read
[[nodiscard]] bool
SocialDestinationsLoad(const char *path,
                       void (*take)(void *target, int32_t index, const SocialDestination &destination), void *target);

/// Gives a context that is about to run Social Media the destination that its setting names by number, which a window
/// would otherwise do. Other filters need nothing.
/// @return an LMF_ERROR_: OK, OPEN without a list, or CORRUPTED where it has no such destination or one without a size
[[nodiscard]] int32_t ChooseDestination(FilterContext &context);

} // namespace lmf
