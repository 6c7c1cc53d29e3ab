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

/// Gives the letters and digits of a text, the letters A to Z in lower case: what counts of a name.
std::string Normalized(std::string_view text);

/// Finds a filter by its name or one of its synonyms, where case, blanks and signs don't count; null if there is none.
const Json *FindFilter(std::string_view name);

/// Gives what stands beside a setting's control, or what tells it from another one with the same label.
std::string LabelOf(const Json &setting);

struct FoundSetting {
    const Json *setting = nullptr;
    bool byKey = false; // by its whole key, as in a settings file
};

/// Finds a setting of a filter by its key, its short name, its label or an ending of whole words that only one key has.
/// Case, blanks and signs don't count. Null, with the reason in `report`, if none or several match.
FoundSetting FindSetting(const Json &filter, std::string_view name, Report &report);

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
