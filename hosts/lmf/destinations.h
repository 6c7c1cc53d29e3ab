// The destinations of Social Media: a list that the library reads from a file of the user's, or else from the one that
// lies beside it. The program reads the same file, so that a destination can be given by its name.
#pragma once

#include <string>

#include "catalogue.h"
#include "files.h"
#include "picture.h"

namespace lmf::host {

/// Gives the catalogue document with the destinations as the entries of their setting.
Json WithDestinations(Json document);

/// Gives the path of the list where the filter needs one. A list that is missing or cannot be read is an error then.
[[nodiscard]] bool FindDestinations(const Json &filter, std::string &path, Report &report);

/// Says what an error of the filter may come from, in brackets; nothing for filters that need no list.
std::string DestinationAdvice(const Json &filter, int errorCode);

} // namespace lmf::host
