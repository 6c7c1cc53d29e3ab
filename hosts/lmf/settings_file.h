// A settings file as a run begins with it, read more strictly than the library reads its own.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "picture.h"

namespace lmf::host {

struct SettingsFile {
    std::map<std::string, std::string> values; // by key
    std::vector<std::string> faults;           // "line 3: ..."; none in a file that says what it means

    /// Reads the file: `Key = value` lines, comments with ';' and empty lines. Unknown keys, values that the library
    /// would limit and lines of another form are faults. Fails for a file that cannot be read.
    [[nodiscard]] bool Read(const std::string &path, Report &report);
};

} // namespace lmf::host
