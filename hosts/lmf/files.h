// Files and folders: whole reads, atomic writes, and nothing left behind when the program is interrupted.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include "picture.h"

namespace lmf::host {

/// The name of standard input where something is read and of standard output where something is written.
inline constexpr std::string_view kStandardStream = "-";

/// Reads a whole file, or standard input. `recognise` sees its first bytes (at most 64) and ends the read by giving
/// false. What is no regular file, a pipe say, is refused if `regularOnly`.
[[nodiscard]] bool ReadFile(const std::string &path, const std::function<bool(ByteView)> &recognise, Bytes &bytes,
                            Report &report, bool regularOnly = false);

/// A file that is written under another name beside its target and takes the target's place on Commit.
/// Without Commit, nothing of it stays. The target's permissions and, for a symbolic link, the link are kept.
/// What is to go to standard output is kept in memory and goes there on Commit.
struct OutputFile {
    std::FILE *file = nullptr; // open for reading and writing
    std::string temporary;
    std::string target;

    OutputFile() = default;
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    /// Opens the temporary file. Fails where the target is there and may not be written, or is no file.
    [[nodiscard]] bool Open(const std::string &path, Report &report);
    /// Closes the file and gives it the target's name.
    [[nodiscard]] bool Commit(Report &report);
};

/// Makes an interrupt or a hang-up remove the open output before the program ends.
void CleanUpOnSignals();

/// Whether a file of this name exists, of whatever kind.
[[nodiscard]] bool FileExists(const std::string &path);

/// Makes a folder and those above it. A folder that is there already is fine.
[[nodiscard]] bool MakeFolders(const std::string &path, Report &report);

/// Gives the part of a path after its last slash.
std::string BaseName(const std::string &path);

/// Gives the folder of the library that came with this program, with a closing slash: where it was installed, or beside
/// the program's own folder where it was built.
std::string ProgramLibraryFolder();

/// Gives the text for the present value of errno.
std::string SystemError();

} // namespace lmf::host
