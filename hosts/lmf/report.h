// What readers and writers hand about: bytes, and what they have to say.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lmf::host {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// What a reader or writer has to say: the error that ended it, and what was left out on the way.
struct Report {
    std::string error;
    std::vector<std::string> warnings;
    std::string damage; // the first damage that a decoder mended; also among the warnings

    /// Sets the error and gives false, so that a failure is one `return report.Fail(...)`.
    bool Fail(std::string text);
    /// Adds a warning, unless it was given already.
    void Warn(std::string text);
    /// Adds a warning of damage in a file that a decoder could read all the same.
    void WarnOfDamage(const std::string &text);
};

} // namespace lmf::host
