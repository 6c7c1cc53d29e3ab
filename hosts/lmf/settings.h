// The settings of a run: the library reads them from an ini file in the user's settings folder, and each run has a
// folder of its own, so that it depends on nothing but what it was given.
#pragma once

#include <string>
#include <vector>

#include "catalogue.h"
#include "files.h"
#include "picture.h"

namespace lmf::host {

struct SettingsRequest {
    const Json *filter = nullptr;
    std::vector<std::string> assignments; // KEY=VALUE
    std::string paper;                    // RRGGBB, or empty for the default
    std::string fromFile;                 // an ini file to begin with, or empty
};

/// Turns one KEY=VALUE into the key and the value as the ini file has it. Fails, naming what is legal, for a wrong
/// key, a value that the setting cannot have, or a text that the file format cannot carry.
[[nodiscard]] bool ParseAssignment(const Json &filter, const std::string &assignment, std::string &key,
                                   std::string &value, Report &report);

/// Gives the lines of the ini file: every default, then the lines of `fromFile`, then what was asked for.
/// `unreadable` tells a file that cannot be read from a request that is wrong.
[[nodiscard]] bool MakeIni(const SettingsRequest &request, std::string &ini, bool &unreadable, Report &report);

/// Writes the ini file into the private folder and makes the library look there. Call it before the library loads.
[[nodiscard]] bool InstallIni(const PrivateFolder &folder, const std::string &ini, Report &report);

/// Gives the ini file in which the library keeps the user's settings.
std::string UserIniPath();

} // namespace lmf::host
