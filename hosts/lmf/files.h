// Files and folders: whole reads, atomic writes, and nothing left behind when the program is interrupted.
#pragma once

#include <climits>
#include <csignal>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include "picture.h"

namespace lmf::host {

/// The name of standard input where something is read and of standard output where something is written.
inline constexpr std::string_view kStandardStream = "-";

/// The largest picture file that is read.
inline constexpr size_t kLargestPicture = size_t{4} << 30;

/// Reads a whole file, or standard input. `recognise` sees its first bytes (at most 64) and ends the read by giving
/// false. What is no regular file, a pipe say, is refused if `regularOnly`, and what is larger than `largest` always.
[[nodiscard]] bool ReadFile(const std::string &path, const std::function<bool(ByteView)> &recognise, Bytes &bytes,
                            Report &report, bool regularOnly = false, size_t largest = kLargestPicture);

/// Reads a whole text file of at most `largest` bytes, or standard input.
[[nodiscard]] bool ReadText(const std::string &path, size_t largest, std::string &text, Report &report);

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

/// The signals that end a program that does nothing about them, without those that tell of a fault in it.
inline constexpr int kEndingSignals[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGUSR1,   SIGUSR2, SIGPIPE, SIGALRM,
                                         SIGTERM, SIGXCPU, SIGPOLL, SIGVTALRM, SIGPROF, SIGPWR,  SIGSTKFLT};

/// Makes every ending signal remove the open output before the program ends.
void CleanUpOnSignals();

/// Holds the name of the temporary file of the open output; empty when there is none.
using OutputSlot = char[PATH_MAX];

/// Keeps the name of the open output in this place from now on: memory that another process sees, too, can remove the
/// file of one that crashed.
void KeepOutputIn(OutputSlot &slot);

/// Removes the file that a slot names, if any. Safe in a signal handler.
void RemoveOutput(char *slot);

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
