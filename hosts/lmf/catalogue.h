// What the host knows of the filters: the catalogue document that the build prints from the library's own tables.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "picture.h"

namespace lmf::host {

using Json = nlohmann::ordered_json;

/// Gives the whole document; docs/catalogue-json.md describes it.
const Json &Catalogue();

/// Finds a filter by its name, in any case; null if there is none.
const Json *FindFilter(std::string_view name);

/// Finds a setting of a filter by its key or by its key without "Filter" and the filter's own prefix, in any case.
/// Null, with the reason in `report`, if none or several match.
const Json *FindSetting(const Json &filter, std::string_view key, Report &report);

/// Whether the filter runs on pictures of this mode (see ModeName).
[[nodiscard]] bool Accepts(const Json &filter, std::string_view mode);

/// Gives "true color, grey" and so on: the modes that the filter accepts.
std::string AcceptedModes(const Json &filter);

/// Ends the sentence that says that there is nothing of the name `wanted`: "; did you mean A or B?" with up to three of
/// `names`, or a full stop if none is near.
std::string Suggestion(std::string_view wanted, const std::vector<std::string> &names);

/// Whether two texts are equal but for the case of the letters A to Z.
[[nodiscard]] bool EqualInAnyCase(std::string_view a, std::string_view b);

} // namespace lmf::host
